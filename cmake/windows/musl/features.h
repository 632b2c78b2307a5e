// SPDX-License-Identifier: GPL-3.0-or-later
// musl's own marks of symbols mean nothing in the format of Windows.
#define hidden
#define weak
#define weak_alias(old, new)
