#include "core/zip_writer.h"

#include "core/fault.h"
#include "platform/platform.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace norvik {

namespace {

constexpr std::uint32_t Local_Header = 0x04034B50, Central_Header = 0x02014B50,
                        End_Of_Directory = 0x06054B50;
constexpr std::uint16_t Version = 20, Utf8_Names = 1U << 11U;

// CRC-32 of ISO 3309, bits from the lowest on.
std::uint32_t Check_Sum(std::string_view bytes) {
  static const std::array<std::uint32_t, 256> table = [] {
    std::array<std::uint32_t, 256> made{};
    for (std::uint32_t n = 0; n < made.size(); ++n) {
      std::uint32_t value = n;
      for (int bit = 0; bit < 8; ++bit)
        value = value >> 1U ^ ((value & 1U) != 0 ? 0xEDB88320U : 0U);
      made[n] = value;
    }
    return made;
  }();
  std::uint32_t sum = 0xFFFFFFFF;
  for (const char byte : bytes) {
    sum = table[(sum ^ static_cast<unsigned char>(byte)) & 0xFFU] ^ sum >> 8U;
  }
  return ~sum;
}

void Put(std::string& out, std::uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out += static_cast<char>(value >> (8 * i) & 0xFFU);
}
void Put2(std::string& out, std::uint32_t value) {
  Put(out, value, 2);
}
void Put4(std::string& out, std::uint32_t value) {
  Put(out, value, 4);
}

// The part that both headers share, from the version that reads it to the length of the name.
void Put_Facts(std::string& out, const Zip_Entry& entry, const Calendar_Time& now) {
  constexpr int first_year = 1980;
  const auto part = [](int value) { return static_cast<std::uint32_t>(value); };
  Put2(out, Version);
  Put2(out, Utf8_Names);
  Put2(out, 0);  // stored
  Put2(out, part(now.Hour) << 11U | part(now.Minute) << 5U | part(now.Second) / 2);
  Put2(out, part(std::max(0, now.Year - first_year)) << 9U | part(now.Month) << 5U | part(now.Day));
  Put4(out, Check_Sum(entry.Bytes));
  Put4(out, static_cast<std::uint32_t>(entry.Bytes.size()));
  Put4(out, static_cast<std::uint32_t>(entry.Bytes.size()));
  Put2(out, static_cast<std::uint32_t>(entry.Name.size()));
  Put2(out, 0);  // nothing extra
}

}  // namespace

std::string Zip_Archive(const std::vector<Zip_Entry>& entries) {
  constexpr std::size_t largest = 0xFFFFFFF0U;
  const Calendar_Time now = Platform.Local_Time();
  std::string archive, directory;
  for (const Zip_Entry& entry : entries) {
    if (archive.size() + entry.Bytes.size() > largest) {
      throw Fault(Fault_Number::Overflow, "The archive would be larger than 4 GB");
    }
    const auto place = static_cast<std::uint32_t>(archive.size());
    Put4(archive, Local_Header);
    Put_Facts(archive, entry, now);
    archive += entry.Name + entry.Bytes;
    Put4(directory, Central_Header);
    Put2(directory, Version);
    Put_Facts(directory, entry, now);
    Put2(directory, 0);  // no comment
    Put2(directory, 0);  // first disk
    Put2(directory, 0);
    Put4(directory, 0);
    Put4(directory, place);
    directory += entry.Name;
  }
  const auto begin = static_cast<std::uint32_t>(archive.size());
  const auto count = static_cast<std::uint32_t>(entries.size());
  archive += directory;
  Put4(archive, End_Of_Directory);
  Put4(archive, 0);
  Put2(archive, count);
  Put2(archive, count);
  Put4(archive, static_cast<std::uint32_t>(directory.size()));
  Put4(archive, begin);
  Put2(archive, 0);
  return archive;
}

}  // namespace norvik
