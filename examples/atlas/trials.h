// trials.h - predicates made from the data itself, to hold the estimates of the indexes against what is true.
#ifndef EXAMPLES_ATLAS_TRIALS_H
#define EXAMPLES_ATLAS_TRIALS_H

#include "database.h"
#include "scatter.h"

namespace atlas {

// About `count` predicates, shared out evenly over all indexes: comparisons by every operator that orders, between, and,
// where values are texts, patterns of a few letters and "*", all with values that objects have. References are only
// compared for equality. The same database and count give the same predicates everywhere.
Scatter runTrials(const Database& database, std::size_t count);

}  // namespace atlas

#endif
