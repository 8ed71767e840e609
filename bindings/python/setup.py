"""Builds a wheel for any Python 3 on the platform of the library that script/package put into it."""
import pathlib

from setuptools import Distribution, setup

try:
    from setuptools.command.bdist_wheel import bdist_wheel
except ImportError:  # setuptools before 70
    from wheel.bdist_wheel import bdist_wheel

NATIVE = pathlib.Path(__file__).parent / "src/orvane/native"


class WithLibraries(Distribution):
    def has_ext_modules(self):
        return True


class PlatformWheel(bdist_wheel):
    def get_tag(self):
        windows = (NATIVE / "orvane.dll").exists()
        return "py3", "none", "win_amd64" if windows else super().get_tag()[2]


setup(distclass=WithLibraries, cmdclass={"bdist_wheel": PlatformWheel})
