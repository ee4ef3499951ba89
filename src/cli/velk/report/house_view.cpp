#include "cli/velk/report/house_view.h"

namespace velk::cli {

const Week& HouseView::week() {
  if (!week_) week_ = readWeek(serial_, unreadable_);
  return *week_;
}

const std::vector<SoftLink>& HouseView::links() {
  if (links_) return *links_;
  links_.emplace();
  for (const Byte source : linkSources()) {
    for (const SoftLink& link : readLinks(serial_, source)) links_->push_back(link);
  }
  return *links_;
}

}  // namespace velk::cli
