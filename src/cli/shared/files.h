#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "cli/shared/failure.h"

/// Files that people name. What the system refuses is told as a `Failure` with `badFile`: the name and the
/// system's reason.
namespace velk::cli {

/// In place of a file's name: standard output, and standard input where a file is read.
constexpr std::string_view standardStream = "-";

/// What is told of a file that the system refuses.
Failure failureOfFile(const std::string& path, const std::error_code& reason);

/// A whole file, of at most 16 MiB.
std::string readFile(const std::string& path);

/// Likewise; nothing when there is no such file.
std::optional<std::string> readFileIfThere(const std::string& path);

/// Throws std::invalid_argument with a sentence when what is read and what is to be written are the same file.
void requireApart(const std::string& read, const std::string& written);

/// Gives a file another name that is free ("house.json.part.1") and returns that name.
std::string putAside(const std::string& path);

/// Something open that takes bytes as they come: a device, a pipe, standard output.
class Sink {
 public:
  Sink() = default;
  virtual ~Sink() = default;
  Sink(const Sink&) = delete;
  Sink& operator=(const Sink&) = delete;

  /// Throws std::system_error.
  virtual void write(std::string_view text) = 0;
};

/// Opens a file that grows as work goes on; what stood in it is gone. A device, a pipe or standard output is
/// written to.
std::unique_ptr<Sink> openGrowing(const std::string& path);

/// Where a name leads when it is opened to be written.
struct Destination {
  std::string file;            ///< a file of a folder, behind all links
  std::unique_ptr<Sink> sink;  ///< anything else, open
};

/// A file that is written at the end of long work. Made before the work begins, it finds out then whether it
/// can be written; nothing is changed by that.
class OutputFile {
 public:
  /// A new file has the mode of the one named `like`, where that is there and the system has modes.
  explicit OutputFile(std::string path, std::string like = {});

  [[nodiscard]] const std::string& path() const { return path_; }

  /// Whether what is written can be found there later; not so for a device, a pipe or standard output.
  [[nodiscard]] bool isFile() const { return !destination_.sink; }

  /// Whether one of two would take the other's place.
  [[nodiscard]] bool isSameAs(const OutputFile& other) const;

  /// Writes a file beside it and lets that take its place when it is whole on the disk, with the mode and
  /// owner of the file that was there; a file behind a link is replaced, not the link. May be called again.
  void write(std::string_view text);

  /// Removes the file, if there is one.
  void remove() noexcept;

 private:
  std::string path_;
  std::string like_;
  Destination destination_;
};

}  // namespace velk::cli
