// What Mono lacks of .NET, for the example to run on it.
namespace System.Runtime.InteropServices
{
    static class NativeLibrary
    {
        [DllImport("libdl.so.2")]
        private static extern IntPtr dlopen(string file, int flags);

        public static IntPtr Load(string file)
        {
            IntPtr handle = dlopen(file, 2); // RTLD_NOW
            if (handle == IntPtr.Zero) throw new DllNotFoundException(file);
            return handle;
        }
    }
}
