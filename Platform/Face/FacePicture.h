#pragma once

#include "Platform/Face/FaceLayout.h"

#include <expected>
#include <filesystem>
#include <string>

namespace Platform {

class FacePainter;
class FileManager;

/// A face as a picture: transparent outside its rounded corners, and as high as its rows need. Needs no
/// display. A failure is told in a sentence fit for a person.
namespace FacePicture {

/// A PNG of `scale` pixels to the point. Fails for a scale that is not above zero, or that gives a side of
/// more than 32767 pixels.
std::expected<std::string, std::string> png(FacePainter const& painter, FaceLayout const& layout,
                                            double scale);

/// An SVG whose user unit is the point.
std::expected<std::string, std::string> svg(FacePainter const& painter, FaceLayout const& layout);

/// A PDF of one page, exactly as large as the face.
std::expected<std::string, std::string> pdf(FacePainter const& painter, FaceLayout const& layout);

/// Puts a picture into a file, all of it or nothing: on failure an older file of that name stays as it was.
std::expected<void, std::string> write(FileManager const& files, std::filesystem::path const& path,
                                       std::string const& picture);

} // namespace FacePicture
} // namespace Platform
