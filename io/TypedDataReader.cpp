#include "VekData.h"

#include "base/Pool.h"
#include "io/TypedDataLoad.h"
#include "io/TypedDataSource.h"
#include "text/DataTypes.h"
#include "text/NameIndex.h"
#include "text/Names.h"

#include <emmintrin.h>
#include <guiddef.h>
#include <limits.h>
#include <string.h>

#include <atomic>
#include <bit>
#include <new>
#include <utility>

namespace
{

constexpr int INDEXED_FROM = 32;

// Adds the entries that it doesn't know yet; false when memory is exhausted.
bool AddToIndex(vek::NameIndex & index, CVekPointerArray<CVekTypedDataEntry> const & entries) noexcept
{
    bool added = true;
    while (added && index.Count() < entries.GetCount())
    {
        CVekString<wchar_t> const & name = entries[index.Count()]->GetName();
        vek::SoughtName const sought{vek::GivenText(name)};
        added = index.AddFirst(name, [&](int other) { return sought.Is(entries[other]->GetName()); });
    }
    return added;
}

// The number of characters before the first zero in bytes at any address.
size_t LengthWithin(void const * name, size_t most) noexcept
{
    constexpr size_t EIGHT = 8;
    auto const * const bytes = static_cast<char const *>(name);
    size_t length = 0;
    for (; length + EIGHT <= most; length += EIGHT)
    {
        __m128i const units = _mm_loadu_si128(reinterpret_cast<__m128i const *>(bytes + length * sizeof(wchar_t)));
        int const ends = _mm_movemask_epi8(_mm_cmpeq_epi16(units, _mm_setzero_si128()));
        if (ends != 0)
            return length + static_cast<size_t>(std::countr_zero(static_cast<unsigned int>(ends))) / sizeof(wchar_t);
    }
    for (wchar_t unit; length < most; ++length)
    {
        memcpy(&unit, bytes + length * sizeof unit, sizeof unit);
        if (unit == 0)
            break;
    }
    return length;
}

constexpr int EMBEDDED_UNITS = 128;

// An entry with a short name has it in its own block. Null when memory is exhausted, also that for the value's object.
template <class Construct>
CVekTypedDataEntry * MakeEntry(vek::PoolSpares & memory, wchar_t const * name, size_t length, Construct construct)
{
    using Access = vek::StringAccess<wchar_t>;
    bool const isShort = length < static_cast<size_t>(EMBEDDED_UNITS);
    auto * const block = static_cast<char *>(
        memory.Allocate(sizeof(CVekTypedDataEntry) + (isShort ? Access::EmbeddedBytes(length) : 0)));
    if (!block)
        return nullptr;
    CVekTypedDataEntry * const entry =
        construct(block, isShort ? Access::Embed(block + sizeof(CVekTypedDataEntry), name, length)
                                 : CVekString<wchar_t>(name, static_cast<int>(length)));
    VEK_VARIANT const & value = entry->Val();
    bool const isWhole = static_cast<size_t>(entry->GetName().GetLength()) == length &&
                         (!vek::IsObject(value.GetType()) || value.GetBuffer());
    if (isWhole)
        return entry;
    delete entry;
    return nullptr;
}

} // namespace

CVekTypedDataReader::CVekTypedDataReader() = default;

CVekTypedDataReader::CVekTypedDataReader(IVekIOStream * stream)
{
    Read(stream);
}

CVekTypedDataReader::~CVekTypedDataReader()
{
    Clear();
}

void CVekTypedDataReader::Clear()
{
    DropIndex();
    constexpr size_t AT_ONCE = 32;
    void * blocks[AT_ONCE];
    size_t count = 0;
    for (int i = 0; i < m_entries.GetCount(); ++i)
    {
        m_entries[i]->~CVekTypedDataEntry();
        blocks[count++] = m_entries[i];
        if (count < AT_ONCE)
            continue;
        vek::PoolFreeMany(blocks, count);
        count = 0;
    }
    vek::PoolFreeMany(blocks, count);
    m_entries.Free();
}

// --- loading --------------------------------------------------------------------------------------------------------

bool CVekTypedDataReader::Read(IVekIOStream * stream)
{
    VekDataError error;
    return Read(stream, error);
}

bool CVekTypedDataReader::Read(IVekIOStream * stream, VekDataError & error)
{
    error = VekDataError();
    error.code = VEK_DATA_ERROR_NO_STREAM;
    if (!stream)
        return false;
    {
        vek::TypedDataSource source(*stream);
        bool const isRead = ReadEntries(source);
        error.entry = source.GetEntry();
        VEK_DATA_ERROR const fault = source.GetFault();
        error.code = isRead ? VEK_DATA_ERROR_NONE : fault ? fault : VEK_DATA_ERROR_MEMORY;
    }
    if (error.code == VEK_DATA_ERROR_NONE)
        error.entry = -1;
    else
        error.offset = static_cast<unsigned int>(stream->GetPosition());
    return error.code == VEK_DATA_ERROR_NONE;
}

bool CVekTypedDataReader::ReadEntries(vek::TypedDataSource & source)
{
    constexpr size_t SMALLEST_ENTRY = 8;
    constexpr int UNPROVEN = 4096; // entries of a stream that can't tell whether it holds them
    int count = 0;
    if (!source.Get(count))
        return false;
    // Kept: a negative number of entries is as good as none.
    if (count < 1)
        return true;
    if (!source.Holds(static_cast<size_t>(count), SMALLEST_ENTRY))
        return source.Fail(VEK_DATA_ERROR_LENGTH);
    if (count > INT_MAX - m_entries.GetCount())
        return false;
    int const room = source.KnowsSize() || count < UNPROVEN ? count : UNPROVEN;
    if (!m_entries.Reserve(m_entries.GetCount() + room))
        return false;
    for (int i = 0; i < count; ++i)
    {
        source.BeginEntry(i);
        if (!ReadEntry(source))
            return false;
    }
    return true;
}

bool CVekTypedDataReader::ReadEntry(vek::TypedDataSource & source)
{
    int nameLength = 0;
    CVekTypedDataEntry * const entry = source.Get(nameLength) ? NewEntry(source, nameLength) : nullptr;
    if (!entry)
        return false;
    if (!vek::LoadValue(source, entry->m_value))
    {
        delete entry;
        return false;
    }
    // Kept: an entry for which the list can't grow is dropped, and reading goes on.
    if (!m_entries.Append(entry))
        delete entry;
    else if (m_index && !AddToIndex(*m_index, m_entries))
        DropIndex();
    return true;
}

// Reads the name and the type and makes the entry of them.
CVekTypedDataEntry * CVekTypedDataReader::NewEntry(vek::TypedDataSource & source, int nameLength)
{
    constexpr int SHORT_LENGTH = 1024;
    wchar_t shortName[SHORT_LENGTH + 1];
    vek::Buffer<wchar_t> longName;
    wchar_t const * name = shortName;
    if (nameLength < 0)
        source.Fail(VEK_DATA_ERROR_LENGTH);
    if (nameLength < 0)
        return nullptr;
    auto const nameBytes = static_cast<size_t>(nameLength) * sizeof(wchar_t);
    unsigned char const * const inPlace =
        nameLength < EMBEDDED_UNITS ? source.InPlace(nameBytes + sizeof(int)) : nullptr; // with the type behind it
    if (inPlace)
    {
        name = reinterpret_cast<wchar_t const *>(inPlace); // at any address: it is only copied
        source.Skip(nameBytes);
    }
    else if (nameLength > SHORT_LENGTH)
    {
        if (!vek::LoadUnits(source, nameLength, longName))
            return nullptr;
        name = longName.Data();
    }
    else if (!source.Get(shortName, static_cast<size_t>(nameLength)))
        return nullptr;
    int type = 0;
    if (!source.Get(type))
        return nullptr;
    // A zero ends the name, wherever it stands.
    return MakeEntry(source.Memory(), name, LengthWithin(name, static_cast<size_t>(nameLength)),
                     [type = static_cast<VEK_DATATYPE>(type)](void * place, CVekString<wchar_t> && text)
                     { return ::new (place) CVekTypedDataEntry(std::move(text), type); });
}

// --- finding --------------------------------------------------------------------------------------------------------

CVekTypedDataEntry const * CVekTypedDataReader::FindEntry(wchar_t const * name) const
{
    vek::GivenText const given(name);
    vek::NameIndex const * const index = m_entries.GetCount() < INDEXED_FROM ? nullptr : FindIndex();
    if (!index)
        return m_entries.At(vek::FindName(m_entries, given));
    vek::SoughtName const sought(given);
    return m_entries.At(index->Find(given, [&](int i) { return sought.Is(m_entries[i]->m_name); }));
}

// Made by the first look-up; several threads may look up at once, and the index of one of them stays.
vek::NameIndex const * CVekTypedDataReader::FindIndex() const
{
    std::atomic_ref<vek::NameIndex *> const index(m_index);
    vek::NameIndex * known = index.load(std::memory_order_acquire);
    if (known)
        return known;
    vek::NameIndex * const made = MakeIndex();
    if (made && index.compare_exchange_strong(known, made, std::memory_order_acq_rel, std::memory_order_acquire))
        return made;
    delete made;
    return known;
}

vek::NameIndex * CVekTypedDataReader::MakeIndex() const
{
    auto * const index = new (std::nothrow) vek::NameIndex;
    if (index && index->Reserve(static_cast<size_t>(m_entries.GetCount())) && AddToIndex(*index, m_entries))
        return index;
    delete index;
    return nullptr;
}

void CVekTypedDataReader::DropIndex()
{
    delete m_index;
    m_index = nullptr;
}

CVekTypedDataEntry const * CVekTypedDataReader::FindTyped(wchar_t const * name, VEK_DATATYPE type) const
{
    CVekTypedDataEntry const * const entry = FindEntry(name);
    return entry && entry->m_value.GetType() == type ? entry : nullptr;
}

// --- typed reads ----------------------------------------------------------------------------------------------------

template <class T>
bool CVekTypedDataReader::ReadValue(wchar_t const * name, VEK_DATATYPE type, T & value, T const & defaultValue) const
{
    CVekTypedDataEntry const * const entry = FindTyped(name, type);
    value = entry ? static_cast<T const &>(entry->m_value) : defaultValue;
    return entry != nullptr;
}

template <class T>
bool CVekTypedDataReader::ReadText(wchar_t const * name, VEK_DATATYPE type, CVekString<T> & value,
                                   T const * defaultValue) const
{
    CVekTypedDataEntry const * const entry = FindTyped(name, type);
    if (!entry)
    {
        value.Assign(defaultValue);
        return false;
    }
    CVekString<T> const & text = entry->m_value;
    value.Assign(text);
    return value.GetLength() == text.GetLength();
}

bool CVekTypedDataReader::ReadBool(wchar_t const * name, bool & value, bool defaultValue) const
{
    return ReadValue(name, VEK_DT_BOOL, value, defaultValue);
}

bool CVekTypedDataReader::ReadChar(wchar_t const * name, char & value, char defaultValue) const
{
    return ReadValue(name, VEK_DT_CHAR, value, defaultValue);
}

bool CVekTypedDataReader::ReadWChar(wchar_t const * name, wchar_t & value, wchar_t defaultValue) const
{
    unsigned short unit = 0;
    bool const found = ReadValue<unsigned short>(name, VEK_DT_WCHAR, unit, static_cast<unsigned short>(defaultValue));
    value = static_cast<wchar_t>(unit);
    return found;
}

bool CVekTypedDataReader::ReadByte(wchar_t const * name, unsigned char & value, unsigned char defaultValue) const
{
    return ReadValue(name, VEK_DT_UCHAR, value, defaultValue);
}

bool CVekTypedDataReader::ReadInt16(wchar_t const * name, short & value, short defaultValue) const
{
    return ReadValue(name, VEK_DT_SHORT, value, defaultValue);
}

bool CVekTypedDataReader::ReadInt32(wchar_t const * name, int & value, int defaultValue) const
{
    return ReadValue(name, VEK_DT_INT, value, defaultValue);
}

bool CVekTypedDataReader::ReadWord(wchar_t const * name, unsigned short & value, unsigned short defaultValue) const
{
    return ReadValue(name, VEK_DT_USHORT, value, defaultValue);
}

bool CVekTypedDataReader::ReadDWord(wchar_t const * name, unsigned int & value, unsigned int defaultValue) const
{
    return ReadValue(name, VEK_DT_UINT, value, defaultValue);
}

bool CVekTypedDataReader::ReadFloat(wchar_t const * name, float & value, float defaultValue) const
{
    return ReadValue(name, VEK_DT_FLOAT, value, defaultValue);
}

bool CVekTypedDataReader::ReadDouble(wchar_t const * name, double & value, double defaultValue) const
{
    return ReadValue(name, VEK_DT_DOUBLE, value, defaultValue);
}

bool CVekTypedDataReader::ReadString(wchar_t const * name, CVekString<char> & value, char const * defaultValue) const
{
    return ReadText(name, VEK_DT_STRINGA, value, defaultValue);
}

bool CVekTypedDataReader::ReadWString(wchar_t const * name, CVekString<wchar_t> & value,
                                      wchar_t const * defaultValue) const
{
    return ReadText(name, VEK_DT_STRINGW, value, defaultValue);
}

bool CVekTypedDataReader::ReadGUID(wchar_t const * name, GUID & value, GUID const & defaultValue) const
{
    return ReadValue(name, VEK_DT_GUID, value, defaultValue);
}

bool CVekTypedDataReader::ReadColor(wchar_t const * name, CVekRGBA<unsigned char> & value,
                                    CVekRGBA<unsigned char> const & defaultValue) const
{
    return ReadValue(name, VEK_DT_RGBA_UCHAR, value, defaultValue);
}

bool CVekTypedDataReader::ReadColor(wchar_t const * name, CVekRGBA<float> & value,
                                    CVekRGBA<float> const & defaultValue) const
{
    return ReadValue(name, VEK_DT_RGBA_FLOAT, value, defaultValue);
}

bool CVekTypedDataReader::ReadVector(wchar_t const * name, CVekVector4D<int> & value,
                                     CVekVector4D<int> const & defaultValue) const
{
    return ReadValue(name, VEK_DT_VECTOR4D_INT, value, defaultValue);
}

bool CVekTypedDataReader::ReadVector(wchar_t const * name, CVekVector4D<float> & value,
                                     CVekVector4D<float> const & defaultValue) const
{
    return ReadValue(name, VEK_DT_VECTOR4D_FLOAT, value, defaultValue);
}

bool CVekTypedDataReader::ReadVector(wchar_t const * name, CVekVector4D<double> & value,
                                     CVekVector4D<double> const & defaultValue) const
{
    return ReadValue(name, VEK_DT_VECTOR4D_DOUBLE, value, defaultValue);
}

template <class T>
bool CVekTypedDataReader::ReadMatrixOf(wchar_t const * name, VEK_DATATYPE type, CVekMatrix<T> & value) const
{
    CVekTypedDataEntry const * const entry = FindTyped(name, type);
    if (!entry)
        return false;
    auto const isFourByFour = [&value] { return value.GetRows() == 4 && value.GetColumns() == 4; };
    if (!isFourByFour() || !value.GetElements())
        value.Create(4, 4);
    if (!isFourByFour() || !value.GetElements())
        return false;
    CVekMatrix4x4<T> const & stored = entry->m_value;
    memcpy(value.GetElements(), stored.GetElements(), 16 * sizeof(T));
    return true;
}

bool CVekTypedDataReader::ReadMatrix(wchar_t const * name, CVekMatrix<float> & value)
{
    return ReadMatrixOf(name, VEK_DT_MATRIX4X4_FLOAT, value);
}

bool CVekTypedDataReader::ReadMatrix(wchar_t const * name, CVekMatrix<double> & value)
{
    return ReadMatrixOf(name, VEK_DT_MATRIX4X4_DOUBLE, value);
}

bool CVekTypedDataReader::ReadBuffer(wchar_t const * name, unsigned char * destination, int size) const
{
    CVekTypedDataEntry const * const entry = size > 0 && destination ? FindTyped(name, VEK_DT_BUFFER) : nullptr;
    if (!entry || !entry->m_value.GetBuffer() || entry->m_value.GetBufferSize() < size)
        return false;
    memcpy(destination, entry->m_value.GetBuffer(), static_cast<size_t>(size));
    return true;
}
