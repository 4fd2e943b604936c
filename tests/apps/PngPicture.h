// Reads PNG files with the system's decoder.
#pragma once

#include "support/Picture.h"

#include <string>

/// Empty when the file is no PNG.
Picture ReadPng(std::wstring const & path);
