/* The libzentrel.so interface as zentrelLibTest uses it. */
#ifndef ZENTREL_H
#define ZENTREL_H

#include "zentrel_types.h"
#include "zentrel_frontend.h"
#include "zentrel_settings.h"
#include "zentrel_ports.h"
#include "zentrel_status.h"
#include "zentrel_images.h"
#include "zentrel_security.h"
#include "zentrel_debugtoken.h"
#include "zentrel_dumps.h"
#include "zentrel_topology.h"
#include "zentrel_link.h"
#include "zentrel_phy.h"
#include "zentrel_designed.h"

#endif
