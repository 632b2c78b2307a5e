// SPDX-License-Identifier: GPL-3.0-or-later
// What musl's mathematics asks of a header that Windows lacks.
#define __LITTLE_ENDIAN 1234
#define __BIG_ENDIAN 4321
#define __BYTE_ORDER __LITTLE_ENDIAN
