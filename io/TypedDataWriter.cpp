#include "VekData.h"

#include "io/TypedDataSink.h"
#include "text/DataTypes.h"
#include "text/Names.h"

namespace
{

using vek::Held;
using vek::TypedDataSink;

// The inline value of a type, or one of an object's type.
template <class T>
T const & ValueOf(VEK_VARIANT const & value)
{
    return value;
}

template <class T>
bool PutText(TypedDataSink & sink, CVekString<T> const & text)
{
    return sink.Put(text.GetLength()) && sink.Put(static_cast<T const *>(text), static_cast<size_t>(text.GetLength()));
}

// One Put for each way a type's values are stored.

template <class T>
bool Put(Held<T>, TypedDataSink & sink, VEK_VARIANT const & value)
{
    return sink.Put(ValueOf<T>(value));
}

bool Put(Held<bool>, TypedDataSink & sink, VEK_VARIANT const & value)
{
    return sink.Put(static_cast<unsigned char>(ValueOf<bool>(value) ? 1 : 0));
}

bool Put(Held<wchar_t>, TypedDataSink & sink, VEK_VARIANT const & value)
{
    return sink.Put(static_cast<wchar_t>(ValueOf<unsigned short>(value)));
}

template <class T>
bool Put(Held<CVekString<T>>, TypedDataSink & sink, VEK_VARIANT const & value)
{
    return PutText(sink, ValueOf<CVekString<T>>(value));
}

template <class T>
bool Put(Held<CVekRGBA<T>>, TypedDataSink & sink, VEK_VARIANT const & value)
{
    CVekRGBA<T> const & color = value;
    T const components[] = {color.red, color.green, color.blue, color.alpha};
    return sink.Put(components, 4);
}

template <class T>
bool Put(Held<CVekVector4D<T>>, TypedDataSink & sink, VEK_VARIANT const & value)
{
    CVekVector4D<T> const & vector = value;
    T const components[] = {vector.x, vector.y, vector.z, vector.w};
    return sink.Put(components, 4);
}

template <class T>
bool Put(Held<CVekMatrix4x4<T>>, TypedDataSink & sink, VEK_VARIANT const & value)
{
    return sink.Put(ValueOf<CVekMatrix4x4<T>>(value).GetElements(), 16);
}

bool Put(Held<vek::HeldBytes>, TypedDataSink & sink, VEK_VARIANT const & value)
{
    int const size = value.GetBufferSize();
    return sink.Put(size) && (size == 0 || sink.PutBlock(value.GetBuffer(), static_cast<size_t>(size)));
}

// Kept: of a GUID nothing is written but its name and type.
bool Put(Held<GUID>, TypedDataSink &, VEK_VARIANT const &)
{
    return true;
}
bool Put(Held<void>, TypedDataSink &, VEK_VARIANT const &)
{
    return true;
}

bool PutValue(TypedDataSink & sink, VEK_VARIANT const & value)
{
    return vek::Visit(value.GetType(), [&](auto held) { return Put(held, sink, value); });
}

} // namespace

CVekTypedDataWriter::CVekTypedDataWriter() = default;

CVekTypedDataWriter::~CVekTypedDataWriter()
{
    for (int i = 0; i < m_entries.GetCount(); ++i)
        delete m_entries[i];
    m_entries.Free();
}

// --- collecting -----------------------------------------------------------------------------------------------------

CVekTypedDataEntry * CVekTypedDataWriter::NewEntry(wchar_t const * name, VEK_DATATYPE type)
{
    vek::GivenText const given(name);
    return given.length < 0 ? nullptr : CVekTypedDataEntry::Make(given.text, given.length, type);
}

bool CVekTypedDataWriter::Append(CVekTypedDataEntry * entry)
{
    if (m_entries.Append(entry))
        return true;
    delete entry;
    return false;
}

template <class T>
bool CVekTypedDataWriter::AddValue(wchar_t const * name, VEK_DATATYPE type, T const & value)
{
    CVekTypedDataEntry * const entry = NewEntry(name, type);
    if (!entry)
        return false;
    entry->m_value = value;
    return Append(entry);
}

template <class T>
bool CVekTypedDataWriter::AddText(wchar_t const * name, VEK_DATATYPE type, T const * text)
{
    CVekTypedDataEntry * const entry = NewEntry(name, type);
    if (!entry)
        return false;
    if (text && *text)
        entry->m_value = text;
    if (static_cast<size_t>(ValueOf<CVekString<T>>(entry->m_value).GetLength()) == (text ? vek::TextLength(text) : 0))
        return Append(entry);
    delete entry;
    return false;
}

bool CVekTypedDataWriter::WriteBool(wchar_t const * name, bool value)
{
    return AddValue(name, VEK_DT_BOOL, value);
}

bool CVekTypedDataWriter::WriteChar(wchar_t const * name, char value)
{
    return AddValue(name, VEK_DT_CHAR, value);
}

bool CVekTypedDataWriter::WriteWChar(wchar_t const * name, wchar_t value)
{
    return AddValue(name, VEK_DT_WCHAR, value);
}

bool CVekTypedDataWriter::WriteByte(wchar_t const * name, unsigned char value)
{
    return AddValue(name, VEK_DT_UCHAR, value);
}

bool CVekTypedDataWriter::WriteInt16(wchar_t const * name, short value)
{
    return AddValue(name, VEK_DT_SHORT, value);
}

bool CVekTypedDataWriter::WriteInt32(wchar_t const * name, int value)
{
    return AddValue(name, VEK_DT_INT, value);
}

bool CVekTypedDataWriter::WriteWord(wchar_t const * name, unsigned short value)
{
    return AddValue(name, VEK_DT_USHORT, value);
}

bool CVekTypedDataWriter::WriteDWord(wchar_t const * name, unsigned int value)
{
    return AddValue(name, VEK_DT_UINT, value);
}

bool CVekTypedDataWriter::WriteFloat(wchar_t const * name, float value)
{
    return AddValue(name, VEK_DT_FLOAT, value);
}

bool CVekTypedDataWriter::WriteDouble(wchar_t const * name, double value)
{
    return AddValue(name, VEK_DT_DOUBLE, value);
}

bool CVekTypedDataWriter::WriteString(wchar_t const * name, char const * value)
{
    return AddText(name, VEK_DT_STRINGA, value);
}

bool CVekTypedDataWriter::WriteWString(wchar_t const * name, wchar_t const * value)
{
    return AddText(name, VEK_DT_STRINGW, value);
}

bool CVekTypedDataWriter::WriteBuffer(wchar_t const * name, unsigned char const * value, int size)
{
    CVekTypedDataEntry * const entry = NewEntry(name, VEK_DT_BUFFER);
    if (entry && entry->m_value.CopyBuffer(value, size))
        return Append(entry);
    delete entry;
    return false;
}

bool CVekTypedDataWriter::WriteGUID(wchar_t const * name, GUID const & value)
{
    return AddValue(name, VEK_DT_GUID, value);
}

bool CVekTypedDataWriter::WriteColor(wchar_t const * name, CVekRGBA<unsigned char> const & value)
{
    return AddValue(name, VEK_DT_RGBA_UCHAR, value);
}

bool CVekTypedDataWriter::WriteColor(wchar_t const * name, CVekRGBA<float> const & value)
{
    return AddValue(name, VEK_DT_RGBA_FLOAT, value);
}

bool CVekTypedDataWriter::WriteVector(wchar_t const * name, CVekVector4D<int> const & value)
{
    return AddValue(name, VEK_DT_VECTOR4D_INT, value);
}

bool CVekTypedDataWriter::WriteVector(wchar_t const * name, CVekVector4D<float> const & value)
{
    return AddValue(name, VEK_DT_VECTOR4D_FLOAT, value);
}

bool CVekTypedDataWriter::WriteVector(wchar_t const * name, CVekVector4D<double> const & value)
{
    return AddValue(name, VEK_DT_VECTOR4D_DOUBLE, value);
}

bool CVekTypedDataWriter::WriteMatrix(wchar_t const * name, CVekMatrix4x4<float> const & value)
{
    return AddValue(name, VEK_DT_MATRIX4X4_FLOAT, value);
}

bool CVekTypedDataWriter::WriteMatrix(wchar_t const * name, CVekMatrix4x4<double> const & value)
{
    return AddValue(name, VEK_DT_MATRIX4X4_DOUBLE, value);
}

CVekTypedDataEntry * CVekTypedDataWriter::FindEntry(wchar_t const * name)
{
    return m_entries.At(vek::FindName(m_entries, vek::GivenText(name)));
}

// --- writing --------------------------------------------------------------------------------------------------------

bool CVekTypedDataWriter::Write(IVekIOStream * stream)
{
    if (!stream)
        return false;
    TypedDataSink sink(*stream);
    bool written = sink.Put(m_entries.GetCount());
    for (int i = 0; written && i < m_entries.GetCount(); ++i)
        written = WriteEntryToStream(sink, *m_entries[i]);
    return sink.Flush() && written;
}

bool CVekTypedDataWriter::WriteEntryToStream(TypedDataSink & sink, CVekTypedDataEntry const & entry)
{
    return PutText(sink, entry.m_name) && sink.Put(static_cast<int>(entry.m_value.GetType())) &&
           PutValue(sink, entry.m_value);
}
