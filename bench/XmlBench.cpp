#include "Benches.h"

#include "Documents.h"
#include "VekLib.h"
#include "VekRef.h"

#include <expat.h>

#include <cstdio>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace bench
{

namespace
{

// The aims.
constexpr double PARSE_OF_EXPAT = 0.65;
constexpr double RELEASE_OF_PARSE = 0.1;
constexpr double WRITE_MEGABYTES = 150;
constexpr double WRITE_OF_PARSE = 4;
constexpr double KEEP_OF_PLAIN = 1.35;
constexpr double LINEAR = 1.5; // caches make the larger case somewhat dearer

using Document = CVekRef<IVekXMLDocument>;

Document CreateDocument()
{
    return Document(getVekLibKernel()->GetXMLManager()->CreateXMLDocument());
}

Document Parse(std::string const & text)
{
    Document document = CreateDocument();
    CVekXMLParser parser;
    if (!parser.ParseXMLMemory(text.data(), static_cast<unsigned int>(text.size()), document.Get()) ||
        !parser.IsComplete())
        document.Reset();
    return document;
}

void XMLCALL OnStart(void *, XML_Char const *, XML_Char const **) {}
void XMLCALL OnEnd(void *, XML_Char const *) {}
void XMLCALL OnText(void *, XML_Char const *, int) {}

bool ParseWithExpatAlone(std::string const & text)
{
    XML_Parser const parser = XML_ParserCreate(nullptr);
    if (!parser)
        return false;
    XML_SetElementHandler(parser, OnStart, OnEnd);
    XML_SetCharacterDataHandler(parser, OnText);
    XML_SetReparseDeferralEnabled(parser, XML_FALSE);
    bool const done = XML_Parse(parser, text.data(), static_cast<int>(text.size()), XML_TRUE) == XML_STATUS_OK;
    XML_ParserFree(parser);
    return done;
}

bool WriteBytes(std::wstring const & path, std::string const & bytes)
{
    std::FILE * const file = VekFileOpenW(path.c_str(), L"wb");
    if (!file)
        return false;
    bool const done = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    return std::fclose(file) == 0 && done;
}

std::wstring TemporaryPath(wchar_t const * name)
{
    wchar_t folder[MAX_PATH + 1] = L"";
    GetTempPathW(MAX_PATH, folder);
    return std::wstring(folder) + L"veklib-bench-" + std::to_wstring(GetCurrentProcessId()) + L"-" + name;
}

struct Times
{
    Best expat, parse, release, parseFile, write, plainWrite;
    std::size_t writtenBytes = 0;
};

/// One round: every measured step once, so that all of them meet the same state of the machine.
bool RunRound(std::string const & text, std::wstring const & source, std::wstring const & target, Times & times)
{
    Stopwatch watch;
    if (!ParseWithExpatAlone(text))
        return false;
    times.expat.Add(watch.Lap());

    Document document = Parse(text);
    times.parse.Add(watch.Lap());
    if (!document)
        return false;
    CVekRef<IVekXMLWriter> const writer(getVekLibKernel()->GetXMLManager()->CreateXMLWriter());
    watch.Lap();
    if (!writer->WriteXMLFile(target.c_str(), document.Get()))
        return false;
    times.write.Add(watch.Lap());
    document.Reset();
    times.release.Add(watch.Lap());

    document = CreateDocument();
    CVekXMLParser parser;
    watch.Lap();
    if (!parser.ParseXMLFile(source.c_str(), document.Get()))
        return false;
    times.parseFile.Add(watch.Lap());
    document.Reset();

    std::string const written = ReadFile(target);
    times.writtenBytes = written.size();
    watch.Lap();
    if (!WriteBytes(target, written))
        return false;
    times.plainWrite.Add(watch.Lap());
    return true;
}

void AddRow(Table & table, Aims & aims, char const * name, std::size_t bytes, Times const & times)
{
    double const expat = times.expat.MegabytesPerSecond(bytes);
    double const parse = times.parse.MegabytesPerSecond(bytes);
    double const release = times.release.Seconds() / times.parse.Seconds();
    double const write = times.write.MegabytesPerSecond(times.writtenBytes);
    table.Add({name, Number(static_cast<double>(bytes) / 1e6, 1), Number(expat, 0), Number(parse, 0),
               Number(parse / expat, 2), aims.Check(parse >= PARSE_OF_EXPAT * expat),
               Number(times.parseFile.MegabytesPerSecond(bytes), 0), Number(times.release.Seconds() * 1e3, 2),
               Number(release, 3), aims.Check(release <= RELEASE_OF_PARSE), Number(write, 0),
               Number(times.plainWrite.MegabytesPerSecond(times.writtenBytes), 0), Number(write / parse, 1),
               aims.Check(write >= WRITE_MEGABYTES || write >= WRITE_OF_PARSE * parse)});
}

bool MeasureDocument(Table & table, Aims & aims, char const * name, std::string const & text, int rounds)
{
    std::fprintf(stderr, "measuring %s\n", name);
    std::wstring const source = TemporaryPath(L"source.xml");
    std::wstring const target = TemporaryPath(L"target.xml");
    Times times;
    bool done = !text.empty() && WriteBytes(source, text);
    for (int round = 0; done && round < rounds; ++round)
        done = RunRound(text, source, target, times);
    DeleteFileW(source.c_str());
    DeleteFileW(target.c_str());
    if (done)
        AddRow(table, aims, name, text.size(), times);
    else
        std::printf("%s: failed\n", name);
    return done;
}

/// The time of one item, reading and releasing, when so many are read at once; as many small documents as make up the
/// larger one are timed together.
bool TimeItems(std::string const & text, int repeats, int items, Best & best)
{
    Stopwatch watch;
    for (int i = 0; i < repeats; ++i)
        if (!Parse(text))
            return false;
    best.Add(watch.Lap() / repeats / items);
    return true;
}

struct LinearityCase
{
    char const * name;
    std::string (*make)(int count);
    int few;
    int rounds;
};

bool AddLinearityRow(Table & table, Aims & aims, LinearityCase const & row)
{
    std::string const small = row.make(row.few);
    std::string const large = row.make(row.few * 10);
    Best smallBest, largeBest;
    for (int round = 0; round < row.rounds; ++round)
        if (!TimeItems(small, 10, row.few, smallBest) || !TimeItems(large, 1, row.few * 10, largeBest))
            return false;
    double const ratio = largeBest.Seconds() / smallBest.Seconds();
    table.Add({row.name, std::to_string(row.few), Number(smallBest.Seconds() * 1e9, 1), std::to_string(row.few * 10),
               Number(largeBest.Seconds() * 1e9, 1), Number(ratio, 2), aims.Check(ratio <= LINEAR)});
    return true;
}

struct KeepTimes
{
    Best plain, keep, positions, plainWrite, keepWrite;
};

bool TimeParse(CVekXMLParser & parser, std::string const & text, Document & document, Best & best)
{
    document = CreateDocument();
    Stopwatch watch;
    if (!parser.ParseXMLMemory(text.data(), static_cast<unsigned int>(text.size()), document.Get()))
        return false;
    best.Add(watch.Lap());
    return true;
}

bool TimeWrite(CVekXMLWriter & writer, std::wstring const & target, Document const & document, Best & best)
{
    Stopwatch watch;
    if (!writer.WriteXMLFile(target.c_str(), document.Get()))
        return false;
    best.Add(watch.Lap());
    return true;
}

bool RunKeepRound(std::string const & text, std::wstring const & target, KeepTimes & times)
{
    CVekXMLParser plain, keep, positions;
    keep.SetKeepAll(VEK_XML_KEEP_ALL);
    positions.SetKeepAll(VEK_XML_KEEP_ALL);
    positions.SetKeepPositions(true);
    CVekXMLWriter plainWriter, keepWriter;
    keepWriter.SetKeepAll(true);
    Document document;
    return TimeParse(plain, text, document, times.plain) &&
           TimeWrite(plainWriter, target, document, times.plainWrite) &&
           TimeParse(positions, text, document, times.positions) && TimeParse(keep, text, document, times.keep) &&
           TimeWrite(keepWriter, target, document, times.keepWrite);
}

bool MeasureKept(Table & table, Aims & aims, char const * name, std::string const & text, int rounds)
{
    std::wstring const target = TemporaryPath(L"target.xml");
    KeepTimes times;
    bool done = !text.empty();
    for (int round = 0; done && round < rounds; ++round)
        done = RunKeepRound(text, target, times);
    DeleteFileW(target.c_str());
    double const ratio = times.keep.Seconds() / times.plain.Seconds();
    auto const speed = [&](Best const & best) { return Number(best.MegabytesPerSecond(text.size()), 0); };
    table.Add({name, Number(static_cast<double>(text.size()) / 1e6, 1), speed(times.plain), speed(times.keep),
               Number(ratio, 2), aims.Check(done && ratio <= KEEP_OF_PLAIN), speed(times.positions),
               speed(times.plainWrite), speed(times.keepWrite)});
    return done;
}

} // namespace

void MeasureXmlMemory()
{
    constexpr int COUNT = 200000;
    std::string const elements = Siblings(COUNT);
    std::string const attributes = Attributes(COUNT);
    std::size_t const before = CommittedBytes();
    Document const first = Parse(elements);
    std::size_t const between = CommittedBytes();
    Document const second = Parse(attributes);
    std::size_t const after = CommittedBytes();
    std::printf(
        "Memory, bytes committed for each (names of 4 and 9, values of 3 characters): element %.0f, attribute %.0f\n\n",
        static_cast<double>(between - before) / COUNT, static_cast<double>(after - between) / COUNT);
}

bool MeasureXmlSpeed(XmlBenchOptions const & options, Aims & aims)
{
    Table table({"document", "MB", "expat", "parse", "ratio", "aim", "file", "release ms", "of parse", "aim", "write",
                 "fwrite", "of parse", "aim"});
    int const slow = options.quick ? 3 : 1;
    bool done = MeasureDocument(table, aims, "database", ReadFile(options.database), 15 / slow);
    done = MeasureDocument(table, aims, "elements 1 MB", ElementHeavy(1000000), 30 / slow) && done;
    done = MeasureDocument(table, aims, "attributes 1 MB", AttributeHeavy(1000000), 30 / slow) && done;
    done = MeasureDocument(table, aims, "elements 10 MB", ElementHeavy(10000000), 6 / slow) && done;
    done = MeasureDocument(table, aims, "attributes 10 MB", AttributeHeavy(10000000), 6 / slow) && done;
    if (!options.quick)
    {
        done = MeasureDocument(table, aims, "elements 100 MB", ElementHeavy(100000000), 4) && done;
        done = MeasureDocument(table, aims, "attributes 100 MB", AttributeHeavy(100000000), 4) && done;
    }
    std::printf(
        "XML, MB/s of the file's bytes, best of the rounds. Aims: parse >= %.2f of expat alone; release <= %.2f of the "
        "parse's time;\nwrite >= %.0f MB/s or %.0f times the parse.\n\n",
        PARSE_OF_EXPAT, RELEASE_OF_PARSE, WRITE_MEGABYTES, WRITE_OF_PARSE);
    table.Print();
    return done;
}

bool MeasureXmlKeep(XmlBenchOptions const & options, Aims & aims)
{
    Table table({"document", "MB", "parse", "keep all", "time", "aim", "positions too", "write", "keep all"});
    int const slow = options.quick ? 3 : 1;
    bool done = MeasureKept(table, aims, "database", ReadFile(options.database), 30 / slow);
    done = MeasureKept(table, aims, "drawing 1 MB", Drawing(1000000), 45 / slow) && done;
    done = MeasureKept(table, aims, "drawing 10 MB", Drawing(10000000), 6) && done;
    std::printf(
        "\nXML with everything kept, MB/s of the file's bytes. Aim: the parse takes <= %.2f times as long as the "
        "plain one.\n\n",
        KEEP_OF_PLAIN);
    table.Print();
    return done;
}

bool MeasureXmlLinearity(Aims & aims)
{
    LinearityCase const rows[] = {
        {"siblings", Siblings, 10000, 20},
        {"attributes of one element", Attributes, 1000, 20},
        {"bytes of elements", [](int bytes) { return ElementHeavy(static_cast<std::size_t>(bytes)); }, 1000000, 6},
        {"bytes of attributes", [](int bytes) { return AttributeHeavy(static_cast<std::size_t>(bytes)); }, 1000000, 6},
    };
    Table table({"of", "few", "ns each", "many", "ns each", "ratio", "aim"});
    bool done = true;
    for (LinearityCase const & row : rows)
        done = AddLinearityRow(table, aims, row) && done;
    std::printf("\nXML, reading and releasing: time for each item. Aim: ratio <= %.1f.\n\n", LINEAR);
    table.Print();
    return done;
}

} // namespace bench
