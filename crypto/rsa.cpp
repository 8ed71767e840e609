#include <memory>
#include <new>

#include "crypto.h"

namespace crypto {
namespace {

constexpr std::size_t kMostDigits = 16384 / 4;

struct ReleaseNumber {
  void operator()(gcry_mpi_t number) const { gcry_mpi_release(number); }
};
using Number = std::unique_ptr<gcry_mpi, ReleaseNumber>;

struct FreeText {
  void operator()(unsigned char* text) const { gcry_free(text); }
};

std::string_view WithoutLeadingZeros(std::string_view digits) {
  return digits.substr(std::min(digits.find_first_not_of('0'), digits.size()));
}

Number ReadNumber(std::string_view text) {
  const std::string digits(WithoutLeadingZeros(text));
  if (text.empty() || digits.size() > kMostDigits ||
      digits.find_first_not_of("0123456789ABCDEFabcdef") != std::string::npos) {
    return nullptr;
  }
  gcry_mpi_t number = nullptr;
  gcry_mpi_scan(&number, GCRYMPI_FMT_HEX, digits.c_str(), 0, nullptr);
  return Number(number);
}

std::string Print(const Number& number, std::size_t width) {
  unsigned char* printed = nullptr;
  if (gcry_mpi_aprint(GCRYMPI_FMT_HEX, &printed, nullptr, number.get()) != 0) {
    throw std::bad_alloc();
  }
  const std::unique_ptr<unsigned char, FreeText> text(printed);
  const auto digits = WithoutLeadingZeros(reinterpret_cast<const char*>(printed));
  return std::string(width - digits.size(), '0').append(digits);
}

}  // namespace

std::optional<std::string> RsaPublic(std::string_view modulus, std::string_view exponent,
                                     std::string_view data) {
  if (!StartGcrypt()) return std::nullopt;
  const Number n = ReadNumber(modulus);
  const Number e = ReadNumber(exponent);
  const Number m = ReadNumber(data);
  // This also refuses a modulus of zero: no number is below it.
  if (!n || !e || !m || gcry_mpi_cmp(m.get(), n.get()) >= 0) return std::nullopt;
  const Number result(gcry_mpi_new(0));
  gcry_mpi_powm(result.get(), m.get(), e.get(), n.get());
  return Print(result, (gcry_mpi_get_nbits(n.get()) + std::size_t{7}) / 8 * 2);
}

}  // namespace crypto
