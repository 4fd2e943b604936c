#pragma once

#include "VekCore.h"

#include <stddef.h>

/// The record in front of each tracked block.
class alignas(2 * sizeof(void *)) CVekMemoryBlock
{
public:
    static constexpr size_t FILE_NAME_SIZE = 64;

    CVekMemoryBlock * GetPrev() const { return m_links.previous; }
    void SetPrev(CVekMemoryBlock * block) { m_links.previous = block; }
    CVekMemoryBlock * GetNext() const { return m_links.next; }
    void SetNext(CVekMemoryBlock * block) { m_links.next = block; }

    VekDirectLinkedListPtr<CVekMemoryBlock> m_links;
    unsigned int m_number; // the first block's is 0
    unsigned int m_size;
    wchar_t m_fileName[FILE_NAME_SIZE];
    int m_line;
    unsigned char * m_data; // the first byte behind this record
};

// The record's size keeps the caller's bytes aligned as malloc's.
static_assert(sizeof(CVekMemoryBlock) % (2 * sizeof(void *)) == 0);

/// Blocks are storage of malloc, never objects of a class.
template <>
void CVekDirectLinkedList<CVekMemoryBlock *>::DeleteElement(CVekMemoryBlock * element);
