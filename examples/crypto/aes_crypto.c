/*
 * A crypto module for Orvane that computes AES where the default one computes DES: keys of 16 or 24
 * octets, blocks of 16, AES-CMAC (SP 800-38B), SHA-256. It stands on libgcrypt; put the calls of
 * your library or HSM in its place. A refused call leaves the length at -1 or gives 0.
 */
#include <gcrypt.h>
#include <orvane/crypto_provider.h>
#include <string.h>

#ifdef _WIN32
#define ENTRY __declspec(dllexport)
#else
#define ENTRY __attribute__((visibility("default")))
#endif

enum { BLOCK = 16, MOST_DATA = 256 };

/* The data filled with 00 to whole blocks; chained if there is an initial value, filled likewise.
 */
static int32_t Cipher(gcry_error_t (*turn)(gcry_cipher_hd_t, void*, size_t, const void*, size_t),
                      const uint8_t* iv, int32_t ivBytes, const uint8_t* key, int32_t keyBytes,
                      const uint8_t* data, int32_t dataBytes, uint8_t* output,
                      int32_t* outputBytes) {
  uint8_t blocks[MOST_DATA] = {0}, chain[BLOCK] = {0};
  const int32_t count = (dataBytes + BLOCK - 1) / BLOCK * BLOCK;
  gcry_cipher_hd_t aes;
  *outputBytes = -1;
  if (!gcry_check_version(NULL) ||
      gcry_cipher_open(&aes, keyBytes == 24 ? GCRY_CIPHER_AES192 : GCRY_CIPHER_AES128,
                       iv ? GCRY_CIPHER_MODE_CBC : GCRY_CIPHER_MODE_ECB, 0))
    return 0;
  memcpy(blocks, data, (size_t)dataBytes);
  if (iv) memcpy(chain, iv, (size_t)ivBytes);
  if (!gcry_cipher_setkey(aes, key, (size_t)keyBytes) && !gcry_cipher_setiv(aes, chain, BLOCK) &&
      !turn(aes, blocks, (size_t)count, NULL, 0)) {
    memcpy(output, blocks, (size_t)count);
    *outputBytes = count;
  }
  gcry_cipher_close(aes);
  return *outputBytes >= 0;
}

/* @des and @descbc, with flag 1 and with any other */
ENTRY int32_t CryptoBlockFlagged(const uint8_t* iv, int32_t ivBytes, const uint8_t* key,
                                 int32_t keyBytes, const uint8_t* data, int32_t dataBytes,
                                 uint8_t* output, int32_t* outputBytes, int32_t mode) {
  (void)mode; /* the length of the key and the initial value tell the same */
  return Cipher(gcry_cipher_encrypt, iv, ivBytes, key, keyBytes, data, dataBytes, output,
                outputBytes);
}
ENTRY int32_t CryptoBlockDefault(const uint8_t* iv, int32_t ivBytes, const uint8_t* key,
                                 int32_t keyBytes, const uint8_t* data, int32_t dataBytes,
                                 uint8_t* output, int32_t* outputBytes, int32_t mode) {
  (void)mode;
  return Cipher(gcry_cipher_decrypt, iv, ivBytes, key, keyBytes, data, dataBytes, output,
                outputBytes);
}

/* @SUBKEY: the data under the master key */
ENTRY int32_t CryptoSubKey(const uint8_t* key, int32_t keyBytes, const uint8_t* data,
                           int32_t dataBytes, uint8_t* output, int32_t* outputBytes, int32_t mode) {
  return CryptoBlockFlagged(NULL, 0, key, keyBytes, data, dataBytes, output, outputBytes, mode);
}

/* @mac: over the initial value and then the data */
ENTRY int32_t CryptoMac(const uint8_t* key, int32_t keyBytes, const uint8_t* data,
                        int32_t dataBytes, const uint8_t* iv, int32_t ivBytes, uint8_t* output,
                        int32_t* outputBytes, int32_t mode) {
  size_t count = BLOCK;
  gcry_mac_hd_t mac;
  (void)mode;
  *outputBytes = -1;
  if (!gcry_check_version(NULL) || gcry_mac_open(&mac, GCRY_MAC_CMAC_AES, 0, NULL)) return 0;
  if (keyBytes >= BLOCK && !gcry_mac_setkey(mac, key, (size_t)keyBytes) &&
      !gcry_mac_write(mac, iv, (size_t)ivBytes) && !gcry_mac_write(mac, data, (size_t)dataBytes) &&
      !gcry_mac_read(mac, output, &count))
    *outputBytes = BLOCK;
  gcry_mac_close(mac);
  return *outputBytes >= 0;
}

ENTRY int32_t CryptoHash(const uint8_t* data, int32_t dataBytes, uint8_t** output, int32_t reserved,
                         int32_t* outputBytes) {
  (void)reserved;
  if (!gcry_check_version(NULL)) return 0;
  gcry_md_hash_buffer(GCRY_MD_SHA256, *output, data, (size_t)dataBytes);
  *outputBytes = (int32_t)gcry_md_get_algo_dlen(GCRY_MD_SHA256);
  return 1;
}

ENTRY int32_t CryptoRsaPublic(const char* modulus, const char* exponent, const char* data,
                              const char** output, int32_t reserved) {
  static unsigned char text[2052]; /* 8,192 bits */
  gcry_mpi_t n = NULL, e = NULL, m = NULL;
  (void)reserved;
  if (gcry_check_version(NULL) && !gcry_mpi_scan(&n, GCRYMPI_FMT_HEX, modulus, 0, NULL) &&
      !gcry_mpi_scan(&e, GCRYMPI_FMT_HEX, exponent, 0, NULL) &&
      !gcry_mpi_scan(&m, GCRYMPI_FMT_HEX, data, 0, NULL) && !gcry_mpi_is_neg(e) &&
      !gcry_mpi_is_neg(m) && gcry_mpi_cmp(m, n) < 0) {
    gcry_mpi_powm(m, m, e, n);
    if (!gcry_mpi_print(GCRYMPI_FMT_HEX, text, sizeof text, NULL, m)) *output = (char*)text;
  }
  gcry_mpi_release(n);
  gcry_mpi_release(e);
  gcry_mpi_release(m);
  return *output != NULL;
}
