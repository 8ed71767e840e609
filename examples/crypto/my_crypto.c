/*
 * A crypto module for Orvane whose keys stay in a device. In its scripts a key is the number, in
 * eight octets, of one that the device holds:
 *
 *   %DATA = @des(0000000000000001, 4142434445464748, 1)
 *
 * The device is the function CipherBlock, here XTEA with two keys of its own: put a call of your
 * library in its place. A clear key (16 or 24 octets), a number that the device doesn't have, and
 * data that isn't whole blocks are refused. @HASH, @SUBKEY and @RSAPUBENC have no entry and fail.
 */
#include <string.h>

#include "crypto_provider.h"

#ifdef _WIN32
#define ENTRY __declspec(dllexport)
#else
#define ENTRY __attribute__((visibility("default")))
#endif

enum { BLOCK = 8, MOST_DATA = 256 };

static uint32_t ReadWord(const uint8_t* octets) {
  return (uint32_t)octets[0] << 24 | (uint32_t)octets[1] << 16 | (uint32_t)octets[2] << 8 |
         octets[3];
}

static void WriteWord(uint32_t word, uint8_t* octets) {
  for (int i = 0; i < 4; ++i) octets[i] = (uint8_t)(word >> (24 - 8 * i));
}

/* One block, in place. 0 if the device has no key of this number. */
static int CipherBlock(const uint8_t* number, int decrypts, uint8_t* block) {
  static const uint32_t keys[2][4] = {{0x00010203, 0x04050607, 0x08090A0B, 0x0C0D0E0F},
                                      {0x2B02056E, 0x1A2B3C4D, 0x5E6F7081, 0x92A3B4C5}};
  const uint32_t delta = 0x9E3779B9, index = ReadWord(number + 4) - 1;
  if (ReadWord(number) != 0 || index > 1) return 0;
  const uint32_t* key = keys[index];
  uint32_t left = ReadWord(block), right = ReadWord(block + 4), sum = decrypts ? delta * 32 : 0;
  for (int round = 0; round < 32; ++round) {
    if (!decrypts) {
      left += ((right << 4 ^ right >> 5) + right) ^ (sum + key[sum & 3]);
      sum += delta;
      right += ((left << 4 ^ left >> 5) + left) ^ (sum + key[sum >> 11 & 3]);
    } else {
      right -= ((left << 4 ^ left >> 5) + left) ^ (sum + key[sum >> 11 & 3]);
      sum -= delta;
      left -= ((right << 4 ^ right >> 5) + right) ^ (sum + key[sum & 3]);
    }
  }
  WriteWord(left, block);
  WriteWord(right, block + 4);
  return 1;
}

/* Whole blocks, in place. A chain makes it CBC, and holds the last block of cipher text then. */
static int CipherBlocks(const uint8_t* key, int decrypts, uint8_t* octets, int32_t count,
                        uint8_t* chain) {
  for (int32_t at = 0; at < count; at += BLOCK) {
    uint8_t* block = octets + at;
    uint8_t before[BLOCK];
    memcpy(before, block, BLOCK);
    for (int i = 0; chain && !decrypts && i < BLOCK; ++i) block[i] ^= chain[i];
    if (!CipherBlock(key, decrypts, block)) return 0;
    for (int i = 0; chain && decrypts && i < BLOCK; ++i) block[i] ^= chain[i];
    if (chain) memcpy(chain, decrypts ? before : block, BLOCK);
  }
  return 1;
}

static int32_t Cipher(int decrypts, const uint8_t* iv, int32_t ivBytes, const uint8_t* key,
                      int32_t keyBytes, const uint8_t* data, int32_t dataBytes, uint8_t* output,
                      int32_t* outputBytes) {
  uint8_t octets[MOST_DATA], chain[BLOCK];
  *outputBytes = -1;
  if (keyBytes != BLOCK || dataBytes % BLOCK != 0 || dataBytes > MOST_DATA) return 0;
  if (iv && ivBytes != BLOCK) return 0;
  memcpy(octets, data, (size_t)dataBytes);
  if (iv) memcpy(chain, iv, BLOCK);
  if (!CipherBlocks(key, decrypts, octets, dataBytes, iv ? chain : NULL)) return 0;
  memcpy(output, octets, (size_t)dataBytes);
  *outputBytes = dataBytes;
  return 1;
}

/* @des and @descbc with flag 1 */
ENTRY int32_t CryptoBlockFlagged(const uint8_t* iv, int32_t ivBytes, const uint8_t* key,
                                 int32_t keyBytes, const uint8_t* data, int32_t dataBytes,
                                 uint8_t* output, int32_t* outputBytes, int32_t mode) {
  (void)mode; /* @descbc alone hands over an iv */
  return Cipher(0, iv, ivBytes, key, keyBytes, data, dataBytes, output, outputBytes);
}

/* @des and @descbc with any other flag */
ENTRY int32_t CryptoBlockDefault(const uint8_t* iv, int32_t ivBytes, const uint8_t* key,
                                 int32_t keyBytes, const uint8_t* data, int32_t dataBytes,
                                 uint8_t* output, int32_t* outputBytes, int32_t mode) {
  (void)mode;
  return Cipher(1, iv, ivBytes, key, keyBytes, data, dataBytes, output, outputBytes);
}

/* @mac: the last block of CBC over the data, 80 and 00 to a whole block (ISO/IEC 9797-1, 1 and 2)
 */
ENTRY int32_t CryptoMac(const uint8_t* key, int32_t keyBytes, const uint8_t* data,
                        int32_t dataBytes, const uint8_t* iv, int32_t ivBytes, uint8_t* output,
                        int32_t* outputBytes, int32_t mode) {
  uint8_t octets[MOST_DATA + BLOCK] = {0}, chain[BLOCK];
  (void)mode;
  *outputBytes = -1;
  if (keyBytes != BLOCK || ivBytes != BLOCK || dataBytes > MOST_DATA) return 0;
  memcpy(octets, data, (size_t)dataBytes);
  octets[dataBytes] = 0x80;
  memcpy(chain, iv, BLOCK);
  if (!CipherBlocks(key, 0, octets, (dataBytes / BLOCK + 1) * BLOCK, chain)) return 0;
  memcpy(output, chain, BLOCK);
  *outputBytes = BLOCK;
  return 1;
}
