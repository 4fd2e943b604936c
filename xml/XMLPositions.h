#pragma once

#include "VekXML.h"

#include "xml/XMLSource.h"

#include <stdint.h>

namespace vek
{

/// Where the elements of a parse stand in its source, found by their addresses.
class XMLPositions
{
public:
    /// An element of the tree begins; null for one that has no place in the source. False when memory is exhausted.
    bool Begin(IVekXMLElement const * element, VekXMLPosition const & position) noexcept;
    /// The place of the next value of the element that began last; the first one is the attribute of that index. An
    /// empty offset stands for a value that is not in the source.
    bool AddValue(int firstIndex, XMLRange value) noexcept;
    /// The innermost element that has begun ends.
    void End(unsigned int end) noexcept;

    bool Find(IVekXMLElement const * element, VekXMLPosition & position) const noexcept;
    bool FindValue(IVekXMLElement const * element, int index, XMLRange & value) const noexcept;

private:
    struct Record
    {
        IVekXMLElement const * element;
        VekXMLPosition position;
        uint32_t firstValue;
        uint32_t valueCount;
        int firstIndex;
    };

    Record const * RecordOf(IVekXMLElement const * element) const noexcept;
    bool Enter(uint32_t record) noexcept;
    size_t Home(IVekXMLElement const * element) const noexcept;

    Buffer<Record> m_records;
    Buffer<XMLRange> m_values;
    Buffer<uint32_t> m_open;  // records from 1; 0 for an element without a place
    Buffer<uint32_t> m_slots; // open addressing, a power of two; likewise
};

} // namespace vek
