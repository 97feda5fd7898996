#include "excel/package/zip_archive.h"

#include <zip.h>

#include <ctime>
#include <memory>
#include <string>
#include <unordered_map>

namespace sw::excel {

namespace {

struct ArchiveCloser {
  void operator()(zip_t* archive) const { zip_discard(archive); }
};
struct FileCloser {
  void operator()(zip_file_t* file) const { zip_fclose(file); }
};
using ArchivePtr = std::unique_ptr<zip_t, ArchiveCloser>;

// libzip's own texts are English; the user reads what went wrong in the program's words.
std::string ZipErrorText(int code) {
  switch (code) {
    case ZIP_ER_NOZIP:
      return "det är inget zip-arkiv";
    case ZIP_ER_INCONS:
    case ZIP_ER_MULTIDISK:
      return "arkivets innehållsförteckning stämmer inte";
    case ZIP_ER_EOF:
    case ZIP_ER_SEEK:
    case ZIP_ER_READ:
      return "arkivet är avkortat";
    case ZIP_ER_CRC:
      return "kontrollsumman stämmer inte";
    case ZIP_ER_ZLIB:
      return "packade data är skadade";
    case ZIP_ER_COMPNOTSUPP:
      return "okänd komprimering";
    case ZIP_ER_ENCRNOTSUPP:
    case ZIP_ER_NOPASSWD:
    case ZIP_ER_WRONGPASSWD:
      return "arkivet är krypterat";
    case ZIP_ER_MEMORY:
      return "minnet räcker inte";
    default:
      return "fel " + std::to_string(code);
  }
}

std::string ZipErrorText(zip_error_t* error) {
  return ZipErrorText(zip_error_code_zip(error));
}

std::string ZipErrorText(zip_t* archive) {
  return ZipErrorText(zip_get_error(archive));
}

std::string ZipErrorText(zip_file_t* file) {
  return ZipErrorText(zip_file_get_error(file));
}

[[noreturn]] void Damaged(const std::string& why) {
  throw PackageError("Filen är inte en giltig arbetsbok (zip-arkivet är skadat: " + why + ").");
}

[[noreturn]] void NotWritten(const std::string& why) {
  throw PackageError("Kan inte skapa arbetsboken (" + why + ").");
}

bool IsSafeName(std::string_view name) {
  if (name.empty() || name.front() == '/' || name.find('\\') != std::string_view::npos) return false;
  if (name.find('\0') != std::string_view::npos) return false;
  std::size_t start = 0;
  while (start <= name.size()) {
    const auto end = std::min(name.find('/', start), name.size());
    const auto segment = name.substr(start, end - start);
    if (segment == "." || segment == "..") return false;
    start = end + 1;
  }
  return true;
}

std::string LowerAscii(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

}  // namespace

std::vector<ZipEntry> ReadZipArchive(std::string_view archive, const PackageLimits& limits) {
  zip_error_t error;
  zip_error_init(&error);
  zip_source_t* source = zip_source_buffer_create(archive.data(), archive.size(), 0, &error);
  if (source == nullptr) Damaged(ZipErrorText(&error));
  ArchivePtr zip(zip_open_from_source(source, ZIP_RDONLY | ZIP_CHECKCONS, &error));
  if (!zip) {
    zip_source_free(source);
    const std::string why = ZipErrorText(&error);
    zip_error_fini(&error);
    Damaged(why);
  }
  zip_error_fini(&error);

  const zip_int64_t count = zip_get_num_entries(zip.get(), 0);
  if (count < 0 || static_cast<std::size_t>(count) > limits.maxEntries) Damaged("för många delar");
  std::vector<ZipEntry> entries;
  std::vector<std::string> seen;
  std::size_t total = 0;
  for (zip_uint64_t index = 0; index < static_cast<zip_uint64_t>(count); ++index) {
    zip_stat_t stat;
    if (zip_stat_index(zip.get(), index, 0, &stat) != 0) Damaged(ZipErrorText(zip.get()));
    const std::string name = stat.name ? stat.name : "";
    if (!name.empty() && name.back() == '/') continue;  // a folder entry
    if (!IsSafeName(name)) Damaged("ogiltigt delnamn");
    if ((stat.valid & ZIP_STAT_ENCRYPTION_METHOD) && stat.encryption_method != ZIP_EM_NONE) {
      throw PackageError("Arbetsboken är krypterad och kan inte öppnas.");
    }
    if (stat.comp_method != ZIP_CM_STORE && stat.comp_method != ZIP_CM_DEFLATE) Damaged("okänd komprimering");
    if (stat.size > limits.maxPartSize) Damaged("delen " + name + " är för stor");
    if (stat.size > (1u << 20) &&
        stat.size / std::max<zip_uint64_t>(stat.comp_size, 1) > limits.maxCompressionRatio) {
      Damaged("delen " + name + " har orimlig komprimeringsgrad");
    }
    total += stat.size;
    if (total > limits.maxTotalSize) Damaged("innehållet är för stort");
    const std::string lower = LowerAscii(name);
    for (const auto& other : seen) {
      if (other == lower) Damaged("delen " + name + " finns två gånger");
    }
    seen.push_back(lower);

    std::unique_ptr<zip_file_t, FileCloser> file(zip_fopen_index(zip.get(), index, 0));
    if (!file) Damaged(ZipErrorText(zip.get()));
    ZipEntry entry{name, std::string(static_cast<std::size_t>(stat.size), '\0')};
    std::size_t done = 0;
    while (done < entry.bytes.size()) {
      const zip_int64_t got = zip_fread(file.get(), entry.bytes.data() + done, entry.bytes.size() - done);
      if (got < 0) Damaged(ZipErrorText(file.get()));
      if (got == 0) Damaged("delen " + name + " är avkortad");
      done += static_cast<std::size_t>(got);
    }
    char extra;
    const zip_int64_t beyond = zip_fread(file.get(), &extra, 1);
    if (beyond < 0) Damaged(ZipErrorText(file.get()));
    if (beyond != 0) Damaged("delen " + name + " är större än angivet");
    // Closing is where libzip compares the checksum of what was read.
    if (zip_fclose(file.release()) != 0) Damaged("delen " + name + " har fel kontrollsumma");
    entries.push_back(std::move(entry));
  }
  return entries;
}

namespace {

// The archive a ZipReuse describes, open for copying parts out of; null when there is none.
ArchivePtr OpenPrevious(const std::string& archive) {
  if (archive.empty()) return nullptr;
  zip_error_t error;
  zip_error_init(&error);
  zip_source_t* source = zip_source_buffer_create(archive.data(), archive.size(), 0, &error);
  zip_error_fini(&error);
  if (source == nullptr) return nullptr;
  zip_error_init(&error);
  ArchivePtr previous(zip_open_from_source(source, ZIP_RDONLY, &error));
  zip_error_fini(&error);
  if (!previous) zip_source_free(source);
  return previous;
}

}  // namespace

std::string WriteZipArchive(const std::vector<ZipSource>& entries, ZipReuse* reuse) {
  // Any failure to reuse only costs compressing the part again.
  ArchivePtr previous = reuse != nullptr ? OpenPrevious(reuse->archive_) : nullptr;
  std::unordered_map<std::string, ZipReuse::Written> written;
  zip_error_t error;
  zip_error_init(&error);
  zip_source_t* buffer = zip_source_buffer_create(nullptr, 0, 0, &error);
  if (buffer == nullptr) NotWritten(ZipErrorText(&error));
  zip_source_keep(buffer);
  std::unique_ptr<zip_source_t, decltype(&zip_source_free)> keeper(buffer, zip_source_free);
  ArchivePtr zip(zip_open_from_source(buffer, ZIP_TRUNCATE, &error));
  if (!zip) {
    const std::string why = ZipErrorText(&error);
    zip_error_fini(&error);
    NotWritten(why);
  }
  zip_error_fini(&error);

  // Once a run: mktime reads the time-zone rules each time, which a save per page would repeat.
  static const std::time_t fixedTime = [] {
    std::tm stamp{};
    stamp.tm_year = 80;
    stamp.tm_mday = 1;
    stamp.tm_isdst = -1;
    return std::mktime(&stamp);
  }();
  for (const auto& entry : entries) {
    zip_source_t* data = nullptr;
    if (reuse != nullptr) {
      const std::string name(entry.name);
      const ZipReuse::Written part{entry.bytes.size(), std::hash<std::string_view>{}(entry.bytes)};
      if (previous) {
        const auto before = reuse->parts_.find(name);
        const zip_int64_t at = zip_name_locate(previous.get(), name.c_str(), ZIP_FL_ENC_UTF_8);
        if (before != reuse->parts_.end() && before->second.size == part.size &&
            before->second.hash == part.hash && at >= 0) {
          // The whole entry: libzip then copies its compressed bytes as they are.
          data = zip_source_zip(zip.get(), previous.get(), static_cast<zip_uint64_t>(at), 0, 0, -1);
        }
      }
      written[name] = part;
    }
    if (data == nullptr) data = zip_source_buffer(zip.get(), entry.bytes.data(), entry.bytes.size(), 0);
    if (data == nullptr) NotWritten(ZipErrorText(zip.get()));
    const zip_int64_t index =
        zip_file_add(zip.get(), std::string(entry.name).c_str(), data, ZIP_FL_ENC_UTF_8 | ZIP_FL_OVERWRITE);
    if (index < 0) {
      zip_source_free(data);
      NotWritten(ZipErrorText(zip.get()));
    }
    const auto at = static_cast<zip_uint64_t>(index);
    // The fastest level: a workbook of hundreds of similar sheets compresses well at any level,
    // and saving time is what the user waits for.
    if (zip_set_file_compression(zip.get(), at, ZIP_CM_DEFLATE, 1) != 0 ||
        zip_file_set_mtime(zip.get(), at, fixedTime, 0) != 0 ||
        zip_file_set_external_attributes(zip.get(), at, 0, ZIP_OPSYS_DOS, 0) != 0) {
      NotWritten(ZipErrorText(zip.get()));
    }
  }
  if (zip_close(zip.get()) != 0) NotWritten(ZipErrorText(zip.get()));
  (void)zip.release();
  previous.reset();

  zip_stat_t stat;
  if (zip_source_stat(buffer, &stat) != 0 || zip_source_open(buffer) != 0) {
    throw PackageError("Kan inte skriva arbetsboken.");
  }
  std::string bytes(static_cast<std::size_t>(stat.size), '\0');
  const zip_int64_t got = zip_source_read(buffer, bytes.data(), bytes.size());
  const bool closed = zip_source_close(buffer) == 0;
  if (!closed || got < 0 || static_cast<std::size_t>(got) != bytes.size())
    throw PackageError("Kan inte skriva arbetsboken.");
  // libzip's copy goes before the one kept for the next save is made: the archive is then held twice
  // at most, not three times, at the moment the whole workbook is in memory.
  keeper.reset();
  if (reuse != nullptr) {
    reuse->archive_ = bytes;
    reuse->parts_ = std::move(written);
  }
  return bytes;
}

}  // namespace sw::excel
