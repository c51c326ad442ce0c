// JPEG pictures.
#pragma once

#include <string>
#include <vector>

#include "picture_files.h"

namespace Thumbnail {

// Throws Failure, whose text begins with the name, for anything that is no whole JPEG picture.
Picture ReadJpeg(std::string const& name, std::vector<unsigned char> const& content);

} // namespace Thumbnail
