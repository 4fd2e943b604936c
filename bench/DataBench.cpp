#include "Benches.h"

#include "VekLib.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

namespace bench
{

namespace
{

constexpr double SCALARS_PER_SECOND = 5e6;
constexpr double BUFFERS_OF_MEMCPY = 0.5;
constexpr int COUNT = 100000;
constexpr unsigned int BUFFER_BYTES = 256 * 1024;
constexpr unsigned int BUFFER_COUNT = 64;

using Names = std::vector<std::wstring>;
using Fill = void (*)(CVekTypedDataWriter & writer, Names const & names);

Names MakeNames(int count)
{
    Names names;
    for (int i = 0; i < count; ++i)
        names.push_back(L"entry" + std::to_wstring(i));
    return names;
}

void AddScalars(CVekTypedDataWriter & writer, Names const & names)
{
    for (std::size_t i = 0; i + 4 <= names.size(); i += 4)
    {
        writer.WriteInt32(names[i].c_str(), static_cast<int>(i));
        writer.WriteFloat(names[i + 1].c_str(), static_cast<float>(i));
        writer.WriteBool(names[i + 2].c_str(), i % 8 == 0);
        writer.WriteDouble(names[i + 3].c_str(), static_cast<double>(i));
    }
}

void AddMixed(CVekTypedDataWriter & writer, Names const & names)
{
    CVekMatrix4x4<float> matrix;
    unsigned char const bytes[256] = {1, 2, 3};
    for (std::size_t i = 0; i + 8 <= names.size(); i += 8)
    {
        writer.WriteInt32(names[i].c_str(), static_cast<int>(i));
        writer.WriteFloat(names[i + 1].c_str(), static_cast<float>(i));
        writer.WriteWString(names[i + 2].c_str(), L"a text of some length");
        writer.WriteString(names[i + 3].c_str(), "a text of some length");
        writer.WriteVector(names[i + 4].c_str(), CVekVector4D<double>(1, 2, 3, 4));
        writer.WriteColor(names[i + 5].c_str(), CVekRGBA<unsigned char>(1, 2, 3, 4));
        writer.WriteMatrix(names[i + 6].c_str(), matrix);
        writer.WriteBuffer(names[i + 7].c_str(), bytes, sizeof bytes);
    }
}

/// A stream of the library, made anew for each round.
class Place
{
public:
    Place(bool inFile, std::size_t size) : m_inFile(inFile), m_size(static_cast<unsigned int>(size))
    {
        if (inFile)
        {
            m_path = (std::filesystem::temp_directory_path() / L"veklib_bench.data").wstring();
            m_stream.Reset(getVekLibKernel()->CreateFileIOStream());
        }
        else
            m_stream.Reset(getVekLibKernel()->CreateMemoryIOStream());
    }
    ~Place()
    {
        m_stream.Reset();
        std::error_code ignored;
        if (m_inFile)
            std::filesystem::remove(m_path, ignored);
    }

    IVekIOStream * Stream() const { return m_stream.Get(); }
    bool BeginWriting() { return (!m_inFile && m_opened) ? Rewind() : Open(VEK_IO_WRITE); }
    bool BeginReading() { return m_inFile ? Open(VEK_IO_READ) : Rewind(); }

private:
    bool Open(unsigned int flag)
    {
        m_opened = m_stream->Open(m_path.c_str(), flag | VEK_IO_BINARY, m_size);
        return m_opened;
    }
    bool Rewind() { return m_stream->SetPosition(static_cast<int>(m_size), true); }

    bool m_inFile;
    bool m_opened = false;
    unsigned int m_size;
    std::wstring m_path;
    CVekRef<IVekIOStream> m_stream;
};

std::size_t BytesOf(CVekTypedDataWriter & writer)
{
    constexpr std::size_t plenty = 64 << 20;
    Place place(false, plenty);
    place.BeginWriting();
    writer.Write(place.Stream());
    return static_cast<std::size_t>(place.Stream()->GetPosition());
}

struct Times
{
    Best write, read;
    bool done = true;
};

Times MeasureEntries(bool inFile, Fill fill, Names const & names, int rounds, std::size_t & bytes)
{
    {
        CVekTypedDataWriter probe;
        fill(probe, names);
        bytes = BytesOf(probe);
    }
    Times times;
    Place place(inFile, bytes);
    for (int round = 0; round < rounds && times.done; ++round)
    {
        Stopwatch watch;
        {
            CVekTypedDataWriter writer;
            watch.Lap();
            fill(writer, names);
            times.done = place.BeginWriting() && writer.Write(place.Stream());
            times.write.Add(watch.Lap());
        }
        CVekTypedDataReader reader;
        watch.Lap();
        times.done = times.done && place.BeginReading() && reader.Read(place.Stream());
        times.read.Add(watch.Lap());
        times.done = times.done && reader.GetNumEntries() == COUNT;
    }
    return times;
}

bool MeasureEntries(int rounds, Aims & aims)
{
    Names const names = MakeNames(COUNT);
    Table table({"100,000 entries", "write M/s", "MB/s", "aim", "read M/s", "MB/s", "aim"});
    bool done = true;
    for (bool const scalars : {true, false})
    {
        for (bool const inFile : {false, true})
        {
            std::size_t bytes = 0;
            Times const times = MeasureEntries(inFile, scalars ? AddScalars : AddMixed, names, rounds, bytes);
            auto const check = [&](Best const & best)
            { return scalars ? aims.Check(COUNT / best.Seconds() >= SCALARS_PER_SECOND) : std::string("-"); };
            table.Add({std::string(scalars ? "scalars" : "mixed") + (inFile ? ", file" : ", memory"),
                       Number(COUNT / times.write.Seconds() / 1e6, 1), Number(times.write.MegabytesPerSecond(bytes), 0),
                       check(times.write), Number(COUNT / times.read.Seconds() / 1e6, 1),
                       Number(times.read.MegabytesPerSecond(bytes), 0), check(times.read)});
            done = done && times.done;
        }
    }
    std::printf(
        "Typed data: entries written (collected and put into the stream) and read. Aim for scalars: %.0f million "
        "a second.\n\n",
        SCALARS_PER_SECOND / 1e6);
    table.Print();
    std::printf("\n");
    return done;
}

bool MeasureBuffers(int rounds, Aims & aims)
{
    std::vector<unsigned char> const source(BUFFER_BYTES, 7);
    std::size_t const total = std::size_t(BUFFER_BYTES) * BUFFER_COUNT;
    std::vector<unsigned char> from(total, 3), to(total);
    CVekTypedDataWriter writer;
    for (unsigned int i = 0; i < BUFFER_COUNT; ++i)
        writer.WriteBuffer(L"buffer", source.data(), BUFFER_BYTES);
    Place place(false, BytesOf(writer));
    Best copied, copiedAnew, written, read;
    bool done = true;
    for (int round = 0; round < rounds && done; ++round)
    {
        Stopwatch watch;
        std::memcpy(to.data(), from.data(), total);
        copied.Add(watch.Lap());
        {
            std::vector<std::unique_ptr<unsigned char[]>> blocks(BUFFER_COUNT);
            watch.Lap();
            for (unsigned int i = 0; i < BUFFER_COUNT; ++i)
            {
                blocks[i].reset(new unsigned char[BUFFER_BYTES]);
                std::memcpy(blocks[i].get(), &from[i * BUFFER_BYTES], BUFFER_BYTES);
            }
            copiedAnew.Add(watch.Lap());
        }
        watch.Lap();
        done = place.BeginWriting() && writer.Write(place.Stream());
        written.Add(watch.Lap());
        CVekTypedDataReader reader;
        place.BeginReading();
        watch.Lap();
        done = reader.Read(place.Stream()) && done;
        read.Add(watch.Lap());
    }
    Table table({"64 buffers of 256 KB, in memory", "MB/s", "of memcpy", "aim"});
    auto const add = [&](char const * name, Best const & best, Best const & base)
    {
        double const ratio = base.Seconds() / best.Seconds();
        table.Add({name, Number(best.MegabytesPerSecond(total), 0), Number(ratio, 2),
                   aims.Check(ratio >= BUFFERS_OF_MEMCPY)});
    };
    table.Add({"memcpy", Number(copied.MegabytesPerSecond(total), 0), "1.00", "-"});
    table.Add({"memcpy to new blocks", Number(copiedAnew.MegabytesPerSecond(total), 0), "-", "-"});
    add("write", written, copied);
    add("read, of memcpy to new blocks", read, copiedAnew);
    table.Print();
    std::printf("\n");
    return done;
}

bool MeasureLookUps(int rounds)
{
    Table table({"entries", "first look-up us", "look-up ns", "missing ns"});
    bool done = true;
    for (int const count : {10, 1000, COUNT})
    {
        Names const names = MakeNames(count);
        CVekTypedDataWriter writer;
        for (std::wstring const & name : names)
            writer.WriteInt32(name.c_str(), 1);
        Place place(false, BytesOf(writer));
        done = place.BeginWriting() && writer.Write(place.Stream()) && place.BeginReading() && done;
        CVekTypedDataReader reader(place.Stream());
        Best found, missed;
        int value = 0, sum = 0;
        Stopwatch watch;
        reader.ReadInt32(names.back().c_str(), value, 0);
        double const first = watch.Lap();
        for (int round = 0; round < rounds; ++round)
        {
            watch.Lap();
            for (int i = 0; i < COUNT; ++i)
            {
                reader.ReadInt32(names[static_cast<std::size_t>(i % count)].c_str(), value, 0);
                sum += value;
            }
            found.Add(watch.Lap());
            for (int i = 0; i < COUNT; ++i)
                reader.ReadInt32(L"not there", value, 0);
            missed.Add(watch.Lap());
        }
        done = done && sum == COUNT * rounds;
        table.Add({std::to_string(count), Number(first * 1e6, 1), Number(found.Seconds() / COUNT * 1e9, 0),
                   Number(missed.Seconds() / COUNT * 1e9, 0)});
    }
    table.Print();
    std::printf("\n");
    return done;
}

} // namespace

bool MeasureData(bool quick, Aims & aims)
{
    int const rounds = quick ? 5 : 20;
    bool done = MeasureEntries(rounds, aims);
    done = MeasureBuffers(rounds, aims) && done;
    done = MeasureLookUps(rounds) && done;
    if (!done)
        std::printf("Typed data: a stream refused what it was to hold.\n\n");
    return done;
}

} // namespace bench
