/// @file
/// Typed data: named values of the library's types, written to a stream and read back by name.
///
/// @code
/// CVekFileIOStream file;
/// CVekTypedDataWriter settings;
/// settings.WriteInt32(L"width", 800);
/// settings.WriteWString(L"title", L"Untitled");
/// if (!file.Open(L"settings.dat", VEK_IO_WRITE | VEK_IO_BINARY, 0) || !settings.Write(&file))
///     VekLogOutput(0, L"The settings are not saved.");
/// @endcode
#ifndef VEK_DATA_H
#define VEK_DATA_H

#include "VekCore.h"
#include "VekExport.h"
#include "VekIO.h"
#include "VekMath.h"
#include "VekText.h"
#include "VekVariant.h"

VEK_HEADER_BEGIN

namespace vek
{
class NameIndex;
struct TypedDataPiece;
class TypedDataSource;
} // namespace vek

/// A name and a value. A copy shares the value's object or buffer, as VEK_VARIANT's copies do: keep only one alive.
class VEK_API CVekTypedDataEntry : public CVekPooled
{
public:
    /// An entry without a value; the types 13 to 19 get an object.
    CVekTypedDataEntry(wchar_t const * name, VEK_DATATYPE type);
    /// Shares the value's object or buffer.
    CVekTypedDataEntry(CVekTypedDataEntry const & other);
    CVekTypedDataEntry & operator=(CVekTypedDataEntry const & other);
    ~CVekTypedDataEntry();

    /// The name, which stays the entry's.
    CVekString<wchar_t> const & GetName() const { return m_name; }
    /// The value, which stays the entry's.
    VEK_VARIANT & Val() { return m_value; }
    VEK_VARIANT const & Val() const { return m_value; }

private:
    friend class CVekTypedDataReader;

    CVekTypedDataEntry(CVekString<wchar_t> && name, VEK_DATATYPE type);

    CVekString<wchar_t> m_name;
    VEK_VARIANT m_value;
};

/// Collects named values and writes them to a stream: their number, then each with its name and type, in the order in
/// which they were given, all as the stream's typed writes store them.
class VEK_API CVekTypedDataWriter
{
public:
    CVekTypedDataWriter();
    CVekTypedDataWriter(CVekTypedDataWriter const &) = delete;
    CVekTypedDataWriter & operator=(CVekTypedDataWriter const &) = delete;
    virtual ~CVekTypedDataWriter();

    /// Each adds an entry with a copy of the value. A name that is there already is stored once more; readers find the
    /// first. Null stands for an empty name or text. False when memory is exhausted; a buffer of size 0 (or null, or a
    /// negative size) is refused too.
    bool WriteBool(wchar_t const * name, bool value);
    bool WriteChar(wchar_t const * name, char value);
    bool WriteWChar(wchar_t const * name, wchar_t value);
    bool WriteByte(wchar_t const * name, unsigned char value);
    bool WriteInt16(wchar_t const * name, short value);
    bool WriteInt32(wchar_t const * name, int value);
    bool WriteWord(wchar_t const * name, unsigned short value);
    bool WriteDWord(wchar_t const * name, unsigned int value);
    bool WriteFloat(wchar_t const * name, float value);
    bool WriteDouble(wchar_t const * name, double value);
    bool WriteString(wchar_t const * name, char const * value);
    bool WriteWString(wchar_t const * name, wchar_t const * value);
    bool WriteBuffer(wchar_t const * name, unsigned char const * value, int size);
    bool WriteGUID(wchar_t const * name, GUID const & value); ///< As the others; only name and type reach the stream.
    bool WriteColor(wchar_t const * name, CVekRGBA<unsigned char> const & value);
    bool WriteColor(wchar_t const * name, CVekRGBA<float> const & value);
    bool WriteVector(wchar_t const * name, CVekVector4D<int> const & value);
    bool WriteVector(wchar_t const * name, CVekVector4D<float> const & value);
    bool WriteVector(wchar_t const * name, CVekVector4D<double> const & value);
    bool WriteMatrix(wchar_t const * name, CVekMatrix4x4<float> const & value);
    bool WriteMatrix(wchar_t const * name, CVekMatrix4x4<double> const & value);

    /// Writes the entries at the stream's position; false at the first write that the stream refuses. The library's
    /// streams refuse no single value, kept: a memory stream that is too small tells of buffers alone, and one that is
    /// closed or opened for reading, file or memory, may give true with nothing written. So open it for writing and
    /// large enough, and for files ask CVekFileIOStream::Flush afterwards.
    bool Write(IVekIOStream * stream);

private:
    CVekPointerArray<vek::TypedDataPiece> m_pieces;
};

/// Why typed data could not be read.
enum VEK_DATA_ERROR : unsigned int
{
    VEK_DATA_ERROR_NONE = 0,
    VEK_DATA_ERROR_NO_STREAM = 1, ///< The stream is null.
    VEK_DATA_ERROR_ENDS_EARLY = 2,
    VEK_DATA_ERROR_LENGTH = 3, ///< A count or length that is negative, or more than the stream still holds.
    VEK_DATA_ERROR_MEMORY = 4
};

/// What CVekTypedDataReader::Read tells.
struct VekDataError
{
    /// What was wrong.
    VEK_DATA_ERROR code = VEK_DATA_ERROR_NONE;
    /// The entry that could not be read, from 0 and among those of this call; -1 for their number.
    int entry = -1;
    /// The stream's position behind what could be read.
    unsigned int offset = 0;
};

/// Loads what a CVekTypedDataWriter wrote and finds the values by name, without regard to the case of ASCII letters;
/// the first entry of a name wins. Looking entries up is safe from several threads at once, as long as none of them
/// calls Read or Clear.
class VEK_API CVekTypedDataReader
{
public:
    CVekTypedDataReader();
    /// Reads the stream; when that fails, the entries before the fault are there.
    explicit CVekTypedDataReader(IVekIOStream * stream);
    CVekTypedDataReader(CVekTypedDataReader const &) = delete;
    CVekTypedDataReader & operator=(CVekTypedDataReader const &) = delete;
    virtual ~CVekTypedDataReader();

    /// Reads entries from the stream's position and adds them to those that are there. False when the stream ends
    /// early, a count or length is negative (the number of entries may be: it counts as 0) or more than the stream
    /// still holds, or memory is exhausted; the entries before the fault stay. A stream of a host's own whose size is 0
    /// or 0xFFFFFFFF counts as one of unknown size: all is read with the block read, which tells the end.
    bool Read(IVekIOStream * stream);
    /// The same, and tells what was wrong; the code is VEK_DATA_ERROR_NONE after a success.
    bool Read(IVekIOStream * stream, VekDataError & error);
    /// Deletes the entries.
    void Clear();

    /// The entries that have been read, of all calls since Clear.
    int GetNumEntries() const { return m_entries.GetCount(); }
    /// The entry at an index, in the order of the stream; null for a bad index. It stays the reader's.
    CVekTypedDataEntry const * GetEntry(int index) const { return m_entries.At(index); }
    /// The first entry of that name; null when there is none. It stays the reader's.
    CVekTypedDataEntry const * FindEntry(wchar_t const * name) const;

    /// Each gives the value of that name if it has exactly the requested type; otherwise the default, and false.
    bool ReadBool(wchar_t const * name, bool & value, bool defaultValue) const;
    bool ReadChar(wchar_t const * name, char & value, char defaultValue) const;
    bool ReadWChar(wchar_t const * name, wchar_t & value, wchar_t defaultValue) const;
    bool ReadByte(wchar_t const * name, unsigned char & value, unsigned char defaultValue) const;
    bool ReadInt16(wchar_t const * name, short & value, short defaultValue) const;
    bool ReadInt32(wchar_t const * name, int & value, int defaultValue) const;
    bool ReadWord(wchar_t const * name, unsigned short & value, unsigned short defaultValue) const;
    bool ReadDWord(wchar_t const * name, unsigned int & value, unsigned int defaultValue) const;
    bool ReadFloat(wchar_t const * name, float & value, float defaultValue) const;
    bool ReadDouble(wchar_t const * name, double & value, double defaultValue) const;
    bool ReadString(wchar_t const * name, CVekString<char> & value, char const * defaultValue) const;
    bool ReadWString(wchar_t const * name, CVekString<wchar_t> & value, wchar_t const * defaultValue) const;
    bool ReadGUID(wchar_t const * name, GUID & value, GUID const & defaultValue) const; ///< From a stream all zeros.
    bool ReadColor(wchar_t const * name, CVekRGBA<unsigned char> & value,
                   CVekRGBA<unsigned char> const & defaultValue) const;
    bool ReadColor(wchar_t const * name, CVekRGBA<float> & value, CVekRGBA<float> const & defaultValue) const;
    bool ReadVector(wchar_t const * name, CVekVector4D<int> & value, CVekVector4D<int> const & defaultValue) const;
    bool ReadVector(wchar_t const * name, CVekVector4D<float> & value, CVekVector4D<float> const & defaultValue) const;
    bool ReadVector(wchar_t const * name, CVekVector4D<double> & value,
                    CVekVector4D<double> const & defaultValue) const;
    /// Gives the 4 x 4 matrix of that name; a destination of another size is made 4 x 4 first. False, with the
    /// destination untouched, when there is none or the destination's size is fixed at another; false, with the
    /// destination empty, when memory is exhausted.
    bool ReadMatrix(wchar_t const * name, CVekMatrix<float> & value);
    bool ReadMatrix(wchar_t const * name, CVekMatrix<double> & value);
    /// Copies the first size bytes of the buffer of that name. False, with the destination untouched, when there is
    /// none, it is shorter, or the size is not above 0.
    bool ReadBuffer(wchar_t const * name, unsigned char * destination, int size) const;

private:
    bool ReadEntries(vek::TypedDataSource & source);
    bool ReadEntry(vek::TypedDataSource & source);
    CVekTypedDataEntry * NewEntry(vek::TypedDataSource & source, int nameLength);
    CVekTypedDataEntry const * FindTyped(wchar_t const * name, VEK_DATATYPE type) const;
    vek::NameIndex const * FindIndex() const;
    vek::NameIndex * MakeIndex() const;
    void DropIndex();
    template <class T>
    bool ReadValue(wchar_t const * name, VEK_DATATYPE type, T & value, T const & defaultValue) const;
    template <class T>
    bool ReadText(wchar_t const * name, VEK_DATATYPE type, CVekString<T> & value, T const * defaultValue) const;
    template <class T>
    bool ReadMatrixOf(wchar_t const * name, VEK_DATATYPE type, CVekMatrix<T> & value) const;

    CVekPointerArray<CVekTypedDataEntry> m_entries;
    mutable vek::NameIndex * m_index = nullptr; // of a long list that was searched
};

VEK_HEADER_END

#endif
