// kttm.h - everything: the value classes, the type table's operations and the type manager.
#ifndef KTTM_H
#define KTTM_H

#include <ktbs.h>
#include <ktin.h>

#include "_ktnulty.h"
#include "d_date.h"
#include "d_interval.h"
#include "d_time.h"
#include "d_timestamp.h"
#include "ktblob.h"
#include "ktbool.h"
#include "ktchar.h"
#include "ktclassid.h"
#include "ktdate.h"
#include "ktdatetime.h"
#include "ktint64.h"
#include "ktmbs.h"
#include "ktobjid.h"
#include "ktoption.h"
#include "ktorder.h"
#include "ktref.h"
#include "ktseal.h"
#include "ktstrcmp.h"
#include "ktstring.h"
#include "ktstriter.h"
#include "ktstrops.h"
#include "kttime.h"
#include "kttypbnd.h"
#include "kttypcvd.h"
#include "kttypdsc.h"
#include "kttypmgr.h"
#include "kttypops.h"

#endif
