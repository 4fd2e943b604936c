#include "VekData.h"

#include "base/Pool.h"
#include "io/TypedDataSink.h"
#include "text/DataTypes.h"
#include "text/Names.h"
#include "text/StringAccess.h"

#include <limits.h>
#include <string.h>

namespace vek
{

/// Entries as a stream of the system's byte order stores them, one behind the other; each stands whole in one piece.
struct TypedDataPiece
{
    size_t size;
    size_t used;
    int entries; // of this piece and all before it

    unsigned char * Bytes() noexcept { return reinterpret_cast<unsigned char *>(this + 1); }
};

} // namespace vek

namespace
{

using vek::Held;
using vek::TypedDataPiece;
using vek::TypedDataSink;
using Pieces = CVekPointerArray<TypedDataPiece>;

// --- collecting -----------------------------------------------------------------------------------------------------

constexpr size_t PIECE_BYTES = 8192;   // what the pool serves at most
constexpr size_t LONGEST = 0x70000000; // bytes of a name or text, as of any string

void FreePiece(TypedDataPiece * piece) noexcept
{
    vek::PoolFree(piece, sizeof *piece + piece->size);
}

/// A piece with room for that many bytes, of which there are fewer than size_t counts in all; null without memory.
TypedDataPiece * PieceFor(Pieces & pieces, size_t bytes) noexcept
{
    TypedDataPiece * const last = pieces.At(pieces.GetCount() - 1);
    if (last && last->size - last->used >= bytes)
        return last;
    size_t const whole = sizeof(TypedDataPiece) + bytes;
    size_t const blockBytes = whole > PIECE_BYTES ? whole : PIECE_BYTES;
    auto * const piece = static_cast<TypedDataPiece *>(vek::PoolAllocate(blockBytes));
    if (!piece)
        return nullptr;
    *piece = {blockBytes - sizeof *piece, 0, last ? last->entries : 0};
    if (pieces.Append(piece))
        return piece;
    FreePiece(piece);
    return nullptr;
}

template <class T>
void Store(unsigned char *& at, T const & value) noexcept
{
    memcpy(at, &value, sizeof value);
    at += sizeof value;
}

/// Adds an entry and gives the place of its value's bytes; null when memory is exhausted or the name is too long.
unsigned char * AddEntry(Pieces & pieces, wchar_t const * name, VEK_DATATYPE type, size_t valueBytes) noexcept
{
    vek::GivenText const given(name);
    size_t const nameBytes = static_cast<size_t>(given.length) * sizeof(wchar_t);
    if (given.length < 0 || nameBytes > LONGEST)
        return nullptr;
    size_t const bytes = 2 * sizeof(int) + nameBytes + valueBytes;
    TypedDataPiece * const piece = PieceFor(pieces, bytes);
    if (!piece || piece->entries == INT_MAX)
        return nullptr;
    unsigned char * at = piece->Bytes() + piece->used;
    piece->used += bytes;
    ++piece->entries;
    Store(at, given.length);
    vek::CopyShort(at, given.text, nameBytes);
    at += nameBytes;
    Store(at, static_cast<int>(type));
    return at;
}

template <class T>
bool AddValue(Pieces & pieces, wchar_t const * name, VEK_DATATYPE type, T const & value) noexcept
{
    unsigned char * at = AddEntry(pieces, name, type, sizeof value);
    if (at)
        Store(at, value);
    return at != nullptr;
}

// Characters or bytes, of which there are no more than an int counts, behind their number.
template <class T>
bool AddCounted(Pieces & pieces, wchar_t const * name, VEK_DATATYPE type, T const * values, size_t count) noexcept
{
    unsigned char * at = AddEntry(pieces, name, type, sizeof(int) + count * sizeof(T));
    if (!at)
        return false;
    Store(at, static_cast<int>(count));
    vek::CopyShort(at, values, count * sizeof(T));
    return true;
}

template <class T>
bool AddText(Pieces & pieces, wchar_t const * name, VEK_DATATYPE type, T const * text) noexcept
{
    size_t const length = text ? vek::TextLength(text) : 0;
    return length <= LONGEST / sizeof(T) && AddCounted(pieces, name, type, text, length);
}

template <class T>
bool AddFour(Pieces & pieces, wchar_t const * name, VEK_DATATYPE type, T a, T b, T c, T d) noexcept
{
    T const values[] = {a, b, c, d};
    return AddValue(pieces, name, type, values);
}

template <class T>
bool AddMatrix(Pieces & pieces, wchar_t const * name, VEK_DATATYPE type, CVekMatrix4x4<T> const & matrix) noexcept
{
    unsigned char * const at = AddEntry(pieces, name, type, 16 * sizeof(T));
    if (at)
        memcpy(at, matrix.GetElements(), 16 * sizeof(T));
    return at != nullptr;
}

// --- writing what was collected one by one
// ----------------------------------------------------------------------------

template <class T>
T Take(unsigned char const *& at) noexcept
{
    T value;
    memcpy(&value, at, sizeof value);
    at += sizeof value;
    return value;
}

template <class T>
bool PutValues(TypedDataSink & sink, unsigned char const *& at, int count)
{
    for (int i = 0; i < count; ++i)
    {
        if (!sink.Put(Take<T>(at)))
            return false;
    }
    return true;
}

template <class T>
bool PutCounted(TypedDataSink & sink, unsigned char const *& at)
{
    int const count = Take<int>(at);
    return sink.Put(count) && PutValues<T>(sink, at, count);
}

// One Put for each way a type's values are stored.

template <class T>
bool Put(Held<T>, TypedDataSink & sink, unsigned char const *& at)
{
    return PutValues<T>(sink, at, 1);
}

bool Put(Held<bool>, TypedDataSink & sink, unsigned char const *& at)
{
    return PutValues<unsigned char>(sink, at, 1);
}

template <class T>
bool Put(Held<CVekString<T>>, TypedDataSink & sink, unsigned char const *& at)
{
    return PutCounted<T>(sink, at);
}

template <class T>
bool Put(Held<CVekRGBA<T>>, TypedDataSink & sink, unsigned char const *& at)
{
    return PutValues<T>(sink, at, 4);
}

template <class T>
bool Put(Held<CVekVector4D<T>>, TypedDataSink & sink, unsigned char const *& at)
{
    return PutValues<T>(sink, at, 4);
}

template <class T>
bool Put(Held<CVekMatrix4x4<T>>, TypedDataSink & sink, unsigned char const *& at)
{
    return PutValues<T>(sink, at, 16);
}

bool Put(Held<vek::HeldBytes>, TypedDataSink & sink, unsigned char const *& at)
{
    int const size = Take<int>(at);
    unsigned char const * const bytes = at;
    at += size;
    return sink.Put(size) && sink.PutBlock(bytes, static_cast<size_t>(size));
}

bool Put(Held<GUID>, TypedDataSink &, unsigned char const *&)
{
    return true;
}
bool Put(Held<void>, TypedDataSink &, unsigned char const *&)
{
    return true;
}

bool PutEntry(TypedDataSink & sink, unsigned char const *& at)
{
    if (!PutCounted<wchar_t>(sink, at))
        return false;
    int const type = Take<int>(at);
    return sink.Put(type) &&
           vek::Visit(static_cast<VEK_DATATYPE>(type), [&](auto held) { return Put(held, sink, at); });
}

bool PutPiece(TypedDataSink & sink, TypedDataPiece & piece)
{
    if (sink.TakesAsStored(piece.used))
        return sink.PutBlock(piece.Bytes(), piece.used);
    unsigned char const * at = piece.Bytes();
    while (at != piece.Bytes() + piece.used)
    {
        if (!PutEntry(sink, at))
            return false;
    }
    return true;
}

} // namespace

CVekTypedDataWriter::CVekTypedDataWriter()
{
    static_assert(sizeof *this == (sizeof(void *) == 4 ? 20 : 32), "compiled hosts hold writers");
}

CVekTypedDataWriter::~CVekTypedDataWriter()
{
    for (int i = 0; i < m_pieces.GetCount(); ++i)
        FreePiece(m_pieces[i]);
    m_pieces.Free();
}

bool CVekTypedDataWriter::WriteBool(wchar_t const * name, bool value)
{
    return AddValue(m_pieces, name, VEK_DT_BOOL, static_cast<unsigned char>(value ? 1 : 0));
}

bool CVekTypedDataWriter::WriteChar(wchar_t const * name, char value)
{
    return AddValue(m_pieces, name, VEK_DT_CHAR, value);
}

bool CVekTypedDataWriter::WriteWChar(wchar_t const * name, wchar_t value)
{
    return AddValue(m_pieces, name, VEK_DT_WCHAR, value);
}

bool CVekTypedDataWriter::WriteByte(wchar_t const * name, unsigned char value)
{
    return AddValue(m_pieces, name, VEK_DT_UCHAR, value);
}

bool CVekTypedDataWriter::WriteInt16(wchar_t const * name, short value)
{
    return AddValue(m_pieces, name, VEK_DT_SHORT, value);
}

bool CVekTypedDataWriter::WriteInt32(wchar_t const * name, int value)
{
    return AddValue(m_pieces, name, VEK_DT_INT, value);
}

bool CVekTypedDataWriter::WriteWord(wchar_t const * name, unsigned short value)
{
    return AddValue(m_pieces, name, VEK_DT_USHORT, value);
}

bool CVekTypedDataWriter::WriteDWord(wchar_t const * name, unsigned int value)
{
    return AddValue(m_pieces, name, VEK_DT_UINT, value);
}

bool CVekTypedDataWriter::WriteFloat(wchar_t const * name, float value)
{
    return AddValue(m_pieces, name, VEK_DT_FLOAT, value);
}

bool CVekTypedDataWriter::WriteDouble(wchar_t const * name, double value)
{
    return AddValue(m_pieces, name, VEK_DT_DOUBLE, value);
}

bool CVekTypedDataWriter::WriteString(wchar_t const * name, char const * value)
{
    return AddText(m_pieces, name, VEK_DT_STRINGA, value);
}

bool CVekTypedDataWriter::WriteWString(wchar_t const * name, wchar_t const * value)
{
    return AddText(m_pieces, name, VEK_DT_STRINGW, value);
}

bool CVekTypedDataWriter::WriteBuffer(wchar_t const * name, unsigned char const * value, int size)
{
    return value && size > 0 && AddCounted(m_pieces, name, VEK_DT_BUFFER, value, static_cast<size_t>(size));
}

bool CVekTypedDataWriter::WriteGUID(wchar_t const * name, GUID const &)
{
    // Kept: of a GUID nothing is written but its name and type.
    return AddEntry(m_pieces, name, VEK_DT_GUID, 0) != nullptr;
}

bool CVekTypedDataWriter::WriteColor(wchar_t const * name, CVekRGBA<unsigned char> const & value)
{
    return AddFour(m_pieces, name, VEK_DT_RGBA_UCHAR, value.red, value.green, value.blue, value.alpha);
}

bool CVekTypedDataWriter::WriteColor(wchar_t const * name, CVekRGBA<float> const & value)
{
    return AddFour(m_pieces, name, VEK_DT_RGBA_FLOAT, value.red, value.green, value.blue, value.alpha);
}

bool CVekTypedDataWriter::WriteVector(wchar_t const * name, CVekVector4D<int> const & value)
{
    return AddFour(m_pieces, name, VEK_DT_VECTOR4D_INT, value.x, value.y, value.z, value.w);
}

bool CVekTypedDataWriter::WriteVector(wchar_t const * name, CVekVector4D<float> const & value)
{
    return AddFour(m_pieces, name, VEK_DT_VECTOR4D_FLOAT, value.x, value.y, value.z, value.w);
}

bool CVekTypedDataWriter::WriteVector(wchar_t const * name, CVekVector4D<double> const & value)
{
    return AddFour(m_pieces, name, VEK_DT_VECTOR4D_DOUBLE, value.x, value.y, value.z, value.w);
}

bool CVekTypedDataWriter::WriteMatrix(wchar_t const * name, CVekMatrix4x4<float> const & value)
{
    return AddMatrix(m_pieces, name, VEK_DT_MATRIX4X4_FLOAT, value);
}

bool CVekTypedDataWriter::WriteMatrix(wchar_t const * name, CVekMatrix4x4<double> const & value)
{
    return AddMatrix(m_pieces, name, VEK_DT_MATRIX4X4_DOUBLE, value);
}

bool CVekTypedDataWriter::Write(IVekIOStream * stream)
{
    if (!stream)
        return false;
    TypedDataSink sink(*stream);
    TypedDataPiece const * const last = m_pieces.At(m_pieces.GetCount() - 1);
    bool written = sink.Put(last ? last->entries : 0);
    for (int i = 0; written && i < m_pieces.GetCount(); ++i)
        written = PutPiece(sink, *m_pieces[i]);
    return sink.Flush() && written;
}
