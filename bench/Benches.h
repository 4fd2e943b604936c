// The benchmarks, a subject each. The library must be initialised.
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

/// Reading and writing with everything kept beside the plain ways. False when something failed.
bool MeasureXmlKeep(XmlBenchOptions const & options, Aims & aims);

/// How fast the lexer and the tokenizer read 10 MB of text like C, beside a lexer written by hand for that language.
bool MeasureLexing(bool quick, Aims & aims);

/// Typed data: writing and reading entries and buffers through memory and file streams, and looking up by name.
/// False when a file can't be made in the folder for temporary files.
bool MeasureData(bool quick, Aims & aims);

/// Linear systems beside a plain row loop, products of 4 x 4 matrices and ray tests. Both precisions.
void MeasureMath(bool quick, Aims & aims);

/// Points of a NURBS curve per second, beside a plain de Boor loop.
void MeasureCurve(bool quick);

/// Tracked allocation and deallocation beside malloc and free, with few and with many live blocks.
void MeasureMemory(bool quick, Aims & aims);

/// Event dispatch, log messages and progress calls.
void MeasureServices(bool quick);

/// The round trip of a command through a worker, beside the sleep of the worker's loop.
void MeasureThreads(bool quick);

} // namespace bench
