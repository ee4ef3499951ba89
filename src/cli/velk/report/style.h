#pragma once

#include <string>

/// How pages and pictures look: one palette, for light and dark surroundings.
namespace velk::cli {

/// The style of a page.
std::string pageStyle();

/// The style of a picture that stands alone; the page's holds it.
std::string pictureStyle();

}  // namespace velk::cli
