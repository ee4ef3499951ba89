#pragma once

#include <functional>
#include <memory>

#include "cli/velk/connection/connection.h"

namespace velk::cli {

/// One link for many commands: while it lives, `LinkChoice` finds its link and `open` hands out its connection,
/// which is made when it is first asked for, and again when it was closed. There is one at a time.
class SharedLink {
 public:
  explicit SharedLink(LinkOptions link);
  ~SharedLink();
  SharedLink(const SharedLink&) = delete;
  SharedLink& operator=(const SharedLink&) = delete;

  /// Null when there is none.
  static SharedLink* current();

  [[nodiscard]] const LinkOptions& link() const { return link_; }
  [[nodiscard]] bool isOpen() const { return connection_ != nullptr; }

  /// Throws `Failure` with `noLink` when the link does not open.
  std::shared_ptr<Connection> connection();

  /// Carries out what a command does before it opens its link: it looks at its words. Throws what is wrong with them.
  void check(const std::function<int()>& command);

  /// From now on commands work on a draft of what the link shows, to which alone they write, until it is dropped. Opens
  /// the link.
  void beginDraft();
  void dropDraft();

  /// Ends what was done with a backup file, which is saved when it was written to; the next command reads it anew.
  /// Other links stay open. Throws `Failure`.
  void save();

  /// Closes the link; a backup file that was written to is saved.
  void close();

  /// Whether the peer has hung up.
  [[nodiscard]] bool isHungUp() const;

 private:
  LinkOptions link_;
  std::shared_ptr<Connection> connection_;
  std::shared_ptr<Connection> draft_;  ///< of `connection_`
  bool checks_ = false;
};

}  // namespace velk::cli
