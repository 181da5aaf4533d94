/*
 * Error injection, TLP round-trip time, credit capture, link-down
 * condition, history buffers, performance monitoring, address traps,
 * host-physical-address ranges and equalization control.
 *
 * THESE LAYOUTS ARE THIS PROJECT'S OWN DESIGN. The library exports these
 * functions, but their records are not documented anywhere this project
 * could read; the records below were designed here, in the style of the
 * documented ones (fixed sizes, u8/u16/u32 fields at natural offsets, a
 * status), and the simulator implements them. Before these commands are
 * used on a real switch, check every record and function here against the
 * vendor's header and correct what differs.
 */
#ifndef ZENTREL_DESIGNED_H
#define ZENTREL_DESIGNED_H

#include "zentrel_types.h"

/* --- error injection, TLP round-trip time, credits, link-down condition --- */

/* --- history buffers, performance monitoring, address traps,
 *     host-physical-address ranges, equalization control --- */

#endif
