/*
 * The cryptography behind the script commands: six entries that a separate library provides.
 *
 * A provider is a dynamic library, orvane_crypto.dll or liborvane_crypto.so, that exports the six
 * functions under the names of the table's members. Orvane looks for it when the first crypto
 * command runs, in this order: one that the host has loaded; the system's search (on Windows the
 * program's folder and those of AddDllDirectory, never the current folder or PATH); Orvane's own
 * folder. It stays loaded until the process ends. A command fails if its entry is missing; the
 * others work.
 *
 * Rules for all entries:
 *  - They run on the thread of the script, one at a time. If an entry calls back, RunScript gives
 *    1024 and the empty text, and the reader functions give 0; Orvane's other functions work.
 *  - All areas belong to the caller and are valid during the call only. Never write to an input
 *    area.
 *  - Counts are in octets. Except for @HASH, a count is half the length of the script's text,
 *    rounded down, whatever its characters; octets that its digits do not reach are 00. A count
 *    need not be a multiple of a block.
 *  - A result longer than its area, or with a negative length, makes the command fail. An entry
 *    refuses its parameters by setting outputBytes to -1, writing nothing and returning 0.
 *  - Keys have 8, 16 or 24 octets. mode is 0 for an 8-octet key and 1 for a longer one; from
 *    @descbc it is 3 and 4 instead. (2 is not used.)
 */
#ifndef ORVANE_CRYPTO_PROVIDER_H
#define ORVANE_CRYPTO_PROVIDER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* @HASH(data). Not 0 on success; 0 makes the command fail without a message.
 *   data, dataBytes  at least one octet, at most 4,096
 *   output           points at a pointer to an area of 4,096 octets, for the digest. Only
 *                    that area is read: pointing *output elsewhere has no effect
 *   reserved         0
 *   outputBytes      0 at the start; set it to the digest's length */
typedef int32_t (*CryptoHashEntry)(const uint8_t* data, int32_t dataBytes, uint8_t** output,
                                   int32_t reserved, int32_t* outputBytes);

/* @des(key, data, flag) and @descbc(key, data, iv, flag): DES for modes 0 and 3, triple DES for
 * modes 1 and 4; 3 and 4 are CBC. The script's flag "1" chooses CryptoBlockFlagged, any other flag
 * CryptoBlockDefault. Orvane ignores the returned value.
 *   iv, ivBytes      null and 0 from @des; from @descbc at most 16 octets, perhaps none
 *   key, keyBytes    8, 16 or 24 octets
 *   data, dataBytes  at most 256 octets, perhaps none
 *   output           an area of 256 octets, all zero
 *   outputBytes      set it on every call: otherwise the command fails */
typedef int32_t (*CryptoBlockEntry)(const uint8_t* iv, int32_t ivBytes, const uint8_t* key,
                                    int32_t keyBytes, const uint8_t* data, int32_t dataBytes,
                                    uint8_t* output, int32_t* outputBytes, int32_t mode);

/* @SUBKEY(key, data): derives a card's key from a master key (diversification). Parameters and
 * rules as above. The default module: EMV Book 2, A1.4.1 (option A), without setting parity. */
typedef int32_t (*CryptoSubKeyEntry)(const uint8_t* key, int32_t keyBytes, const uint8_t* data,
                                     int32_t dataBytes, uint8_t* output, int32_t* outputBytes,
                                     int32_t mode);

/* @mac(key, data, iv, flag). The default module: ISO/IEC 9797-1, padding method 2, algorithm 1 with
 * 8 octets of key and algorithm 3 (the retail MAC, ANSI X9.19) with more; with 24 octets K1 chains,
 * then K2 decrypts and K3 encrypts the result. With flag "1" the script gets the first four octets
 * of the output. Parameters as above, but outputBytes is 0 at the start. Orvane ignores the
 * returned value. */
typedef int32_t (*CryptoMacEntry)(const uint8_t* key, int32_t keyBytes, const uint8_t* data,
                                  int32_t dataBytes, const uint8_t* iv, int32_t ivBytes,
                                  uint8_t* output, int32_t* outputBytes, int32_t mode);

/* @RSAPUBENC(modulus, exponent, data). Not 0 on success; 0 gives the script a message.
 *   modulus, exponent, data  zero-terminated texts without blanks, as the script wrote them: they
 *                            need not be numbers. data, blanks counted, was not longer than modulus
 *   output                   points at null; point it at a zero-terminated text. The script gets
 *                            that text without its leading "0" characters. The text belongs to the
 *                            provider: keep it valid until the next call; the caller never frees
 *                            it
 *   reserved                 0 */
typedef int32_t (*CryptoRsaPublicEntry)(const char* modulus, const char* exponent, const char* data,
                                        const char** output, int32_t reserved);

/* The table that Orvane fills. */
typedef struct CryptoProvider {
  CryptoHashEntry CryptoHash;
  CryptoBlockEntry CryptoBlockFlagged;
  CryptoBlockEntry CryptoBlockDefault;
  CryptoSubKeyEntry CryptoSubKey;
  CryptoMacEntry CryptoMac;
  CryptoRsaPublicEntry CryptoRsaPublic;
} CryptoProvider;

#ifdef __cplusplus
}
#endif

#endif
