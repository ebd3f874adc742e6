/* The utility library: one header per family, all reachable from here.
 * Free functions on caller-owned data; nothing prints, nothing allocates on
 * the caller's behalf unless its contract says so. */
#ifndef UTIL_UTIL_H
#define UTIL_UTIL_H

#include "types.h"
#include "helpers.h"
#include "regress.h"
#include "sound.h"
#include "random.h"
#include "vectors.h"
#include "writers.h"
#include "surfaces.h"
#include "colour.h"
#include "curves.h"
#include "complexarith.h"
#include "matrices.h"
#include "fft.h"

#endif
