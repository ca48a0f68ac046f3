// kttm.h - everything: the value classes, the type table's operations and the type manager.
#ifndef KTTM_H
#define KTTM_H

#include <ktbs.h>
#include <ktin.h>

#include "_ktnulty.h"
#include "ktchar.h"
#include "ktoption.h"
#include "ktstring.h"
#include "ktstriter.h"
#include "kttypcvd.h"
#include "kttypdsc.h"
#include "kttypmgr.h"
#include "kttypops.h"

#endif
