#pragma once

#include "Harness.h"

#include <string>

namespace bench
{

struct XmlBenchOptions
{
    std::wstring database; // the MIME database, or another real file
    bool quick = false;    // no document of 100 MB, fewer rounds
};

/// Memory for each element and each attribute. First of all: later on the library has memory in reserve.
void MeasureXmlMemory();

/// Reading, releasing and writing beside expat alone and fwrite of the same bytes. False when something failed.
bool MeasureXmlSpeed(XmlBenchOptions const & options, Aims & aims);

/// Whether ten times as many siblings or attributes take ten times as long.
bool MeasureXmlLinearity(Aims & aims);

} // namespace bench
