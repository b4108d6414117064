#pragma once

// Marks what libzt-transfers.so shows to its users; everything else is hidden.
#define ZT_TRANSFERS_EXPORT __attribute__((visibility("default")))
