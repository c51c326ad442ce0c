// The zone records in force.
#pragma once

#include "time/zone_facts.h"

namespace QMT {

// Where the current year of the records comes from.
using YearSource = PortableTime::YearSource;

}
