// SPDX-License-Identifier: GPL-3.0-or-later
// The binary form of property lists: the header "bplist00", the objects, a table of their offsets, and a
// trailer of 32 bytes. A container names its members by their numbers in the table, so a file is a graph that
// only good manners make a tree.
#pragma once

#include <QtGlobal>

namespace tomelet::propertylist {

/// Seconds from 1970 to 2001, where the form's dates begin.
inline constexpr double secondsTo2001 = 978307200;

/// The high half of an object's first byte.
enum Marker : quint8 {
    SimpleMarker = 0x0,
    IntegerMarker = 0x1,
    RealMarker = 0x2,
    DateMarker = 0x3,
    DataMarker = 0x4,
    AsciiMarker = 0x5,
    Utf16Marker = 0x6,
    UidMarker = 0x8,
    ArrayMarker = 0xA,
    SetMarker = 0xC,
    DictionaryMarker = 0xD
};

} // namespace tomelet::propertylist
