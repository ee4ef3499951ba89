#include "cli/shared/files.h"

#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "cli/shared/file_names.h"
#include "cli/shared/system_files.h"

namespace velk::cli {
namespace {

constexpr std::size_t largestFile = std::size_t{16} << 20;

/// Calls `use`; what the system refuses is told with the file's name.
template <class Use>
auto named(const std::string& path, Use use) {
  try {
    return use();
  } catch (const std::system_error& error) {
    throw failureOfFile(path, error.code());
  }
}

}  // namespace

Failure failureOfFile(const std::string& path, const std::error_code& reason) {
  const std::string name = path == standardStream ? "standard output" : path;
  return {badFile, name + ": " + reason.message()};
}

void requireApart(const std::string& read, const std::string& written) {
  std::error_code none;
  if (std::filesystem::equivalent(pathOf(read), pathOf(written), none)) {
    throw std::invalid_argument(read + " is read, and would be lost under " + written);
  }
}

std::string readFile(const std::string& path) {
  return named(path, [&] { return system::read(path, largestFile); });
}

std::optional<std::string> readFileIfThere(const std::string& path) {
  try {
    return system::read(path, largestFile);
  } catch (const std::system_error& error) {
    if (error.code() == std::errc::no_such_file_or_directory) return std::nullopt;
    throw failureOfFile(path, error.code());
  }
}

std::string putAside(const std::string& path) {
  return named(path, [&] {
    for (int number = 1;; ++number) {
      std::string aside = path + "." + std::to_string(number);
      if (system::rename(path, aside)) return aside;
    }
  });
}

std::unique_ptr<Sink> openGrowing(const std::string& path) {
  return named(path, [&] {
    Destination destination = system::open(path);
    return destination.sink ? std::move(destination.sink) : system::create(destination.file);
  });
}

OutputFile::OutputFile(std::string path, std::string like)
    : path_(std::move(path)),
      like_(std::move(like)),
      destination_(named(path_, [&] { return system::open(path_); })) {}

bool OutputFile::isSameAs(const OutputFile& other) const {
  const auto whole = [](const OutputFile& file) {
    return std::filesystem::weakly_canonical(std::filesystem::absolute(pathOf(file.destination_.file)));
  };
  return isFile() && other.isFile() && whole(*this) == whole(other);
}

void OutputFile::write(std::string_view text) {
  named(path_, [&] {
    if (destination_.sink) {
      destination_.sink->write(text);
    } else {
      system::replace(destination_.file, like_, text);
    }
  });
}

void OutputFile::remove() noexcept {
  if (isFile()) system::remove(destination_.file);
}

}  // namespace velk::cli
