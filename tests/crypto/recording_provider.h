// A provider that computes nothing: it journals each call with all that crosses, and answers what a
// test has prepared. SimulatorJournal and SimulatorAnswer are those of simulators/simulator.h.
//
// A journal line shows an area to be read as its octets, its count behind a slash, and behind a
// plus sign what lies beyond the count up to the area's end, less the zeros there: 11+22/1. It
// shows the value that a length has at the start in the hash and MAC entries. An output area is
// journaled, as "dirty", only if it isn't all zero.
//
// A prepared answer's data goes to the output area, or is the text of CryptoRsaPublic, and its
// length is the length to set. Without a prepared answer the entries give the octets A1 B2, and
// CryptoRsaPublic the text "0C3". Lengths that mean something else:
#pragma once

#define RECORDING_SETS_NO_LENGTH 1000001    // the entry leaves the length alone
#define RECORDING_POINTS_ELSEWHERE 1000002  // CryptoHash writes to an area of its own
#define RECORDING_NULL_TEXT 1000003         // CryptoRsaPublic leaves its text null
