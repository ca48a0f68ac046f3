// type_table.h - the two type tables.
#ifndef KT_TABLE_TYPE_TABLE_H
#define KT_TABLE_TYPE_TABLE_H

#include "kttypdsc.h"

namespace kt {

// A table: for each of the 256 values of an id byte its row. Ids outside lead to the illegal row.
using TypeTable = KtTypeDescriptor* const*;

TypeTable currentTypeTable();
TypeTable legacyTypeTable();

// Its compare functions, by the same ids: what indexes call millions of times is found by one access.
using CompareTable = const KtTypeCmpFunc*;
CompareTable comparesOf(TypeTable table);

// Of a row, wherever it stands.
void setCompare(KtTypeDescriptor& row, KtTypeCmpFunc compare);

// The rows that a table really holds: ids 0 to this, exclusive.
int typeCount(TypeTable table);

}  // namespace kt

#endif
