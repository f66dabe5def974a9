#pragma once

// Pictures and a font for the printer's tests, and a reader for the labels that it writes.

#include <functional>
#include <string>
#include <vector>

namespace qncomm::testing {

/// A PCX, version 5, one bit, packed; black where the function says so (a frame with a diagonal
/// when there is none).
std::string TestPcx(int width, int height, const std::function<bool(int, int)>& black = {});

/// A scalable font of this machine.
std::string TestFont();

/// A PNG's dots: rows of '#' and '.'.
std::vector<std::string> ReadPng(const std::string& path);

} // namespace qncomm::testing
