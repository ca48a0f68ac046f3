// manager_row.h - how the manager finds a row: one table access, whatever the id.
#ifndef KT_MODULE_MANAGER_ROW_H
#define KT_MODULE_MANAGER_ROW_H

#include "kttypmgr.h"

inline KtTypeDescriptor& KtTypeMgr::Row(char id) const { return *table_[static_cast<unsigned char>(id)]; }

#endif
