// date_plans.h - with and without the plans of date formats, whatever formats were used before.
#ifndef DATE_PLANS_H
#define DATE_PLANS_H

#include "values/datetime_plan.h"

#if defined(KT_FOR_AVX2)
inline void setPlans(kt::DateTimePlan::State state) {
  for (kt::DateTimePlan& plan : kt::dateTimePlans) plan.state = state;
}
inline void forgetPlans() { setPlans(kt::DateTimePlan::kUnused); }  // the next format has its place
inline void closePlans() { setPlans(kt::DateTimePlan::kNone); }     // no format has one
#else
inline void forgetPlans() {}
inline void closePlans() {}
#endif

#endif
