// SPDX-License-Identifier: GPL-3.0-or-later
// Writes the binary form of property lists.
#include "foundation/PropertyList.h"

#include "foundation/PropertyListBinary_p.h"
#include "foundation/PropertyList_p.h"

#include <QDateTime>
#include <QHash>
#include <QtEndian>

#include <algorithm>
#include <bit>
#include <vector>

namespace tomelet {

namespace {

using namespace propertylist;

QByteArray bigEndian(quint64 number, int size)
{
    QByteArray bytes(size, '\0');
    for (int i = size - 1; i >= 0; --i, number >>= 8) bytes[i] = char(number & 0xFF);
    return bytes;
}

// The bytes that a number needs, as a power of two.
int powerFor(quint64 number)
{
    if (number <= 0xFF) return 0;
    if (number <= 0xFFFF) return 1;
    return number <= 0xFFFFFFFF ? 2 : 3;
}

QByteArray integerObject(qint64 number)
{
    const int power = powerFor(quint64(number));
    return char(IntegerMarker << 4 | power) + bigEndian(quint64(number), 1 << power);
}

QByteArray sizedMarker(Marker marker, qsizetype size)
{
    if (size < 0xF) return QByteArray(1, char(marker << 4 | int(size)));
    return char(marker << 4 | 0xF) + integerObject(size);
}

QByteArray textObject(const QString &text)
{
    const bool isAscii = std::all_of(text.begin(), text.end(), [](QChar c) { return c < QChar(0x80); });
    if (isAscii) return sizedMarker(AsciiMarker, text.size()) + text.toLatin1();
    QByteArray units(text.size() * 2, Qt::Uninitialized);
    qToBigEndian<quint16>(text.data(), text.size(), units.data());
    return sizedMarker(Utf16Marker, text.size()) + units;
}

QByteArray scalarObject(const QVariant &value)
{
    switch (kindOf(value)) {
    case Kind::Boolean: return QByteArray(1, value.toBool() ? '\x09' : '\x08');
    case Kind::Integer: return integerObject(value.toLongLong());
    case Kind::Real: return char(RealMarker << 4 | 3) + bigEndian(std::bit_cast<quint64>(value.toDouble()), 8);
    case Kind::Data: return sizedMarker(DataMarker, value.toByteArray().size()) + value.toByteArray();
    case Kind::Date: {
        const double seconds = double(value.toDateTime().toMSecsSinceEpoch()) / 1000 - secondsTo2001;
        return char(DateMarker << 4 | 3) + bigEndian(std::bit_cast<quint64>(seconds), 8);
    }
    default: return textObject(value.toString());
    }
}

class Writer
{
public:
    QByteArray document(const QVariant &tree)
    {
        if (kindOf(tree) == Kind::None) return {};
        add(tree);
        const int referenceSize = 1 << powerFor(m_objects.size());
        QByteArray out = "bplist00";
        std::vector<qsizetype> offsets;
        for (const Object &object : m_objects) {
            offsets.push_back(out.size());
            out += object.bytes;
            for (const quint64 member : object.members) out += bigEndian(member, referenceSize);
        }
        const qsizetype table = out.size();
        const int offsetSize = 1 << powerFor(quint64(table));
        for (const qsizetype offset : offsets) out += bigEndian(quint64(offset), offsetSize);
        out += QByteArray(6, '\0') + char(offsetSize) + char(referenceSize);
        return out + bigEndian(m_objects.size(), 8) + bigEndian(0, 8) + bigEndian(quint64(table), 8);
    }

private:
    struct Object
    {
        QByteArray bytes;
        std::vector<quint64> members;
    };

    // The number of the value's object: containers come before their members, equal scalars are stored once.
    quint64 add(const QVariant &value)
    {
        const Kind kind = kindOf(value);
        if (kind == Kind::Array) return addArray(value.toList());
        if (kind == Kind::Dictionary) return addDictionary(value.toMap());
        const QByteArray bytes = scalarObject(value);
        const auto known = m_scalars.constFind(bytes);
        if (known != m_scalars.constEnd()) return *known;
        m_objects.push_back({bytes, {}});
        return *m_scalars.insert(bytes, m_objects.size() - 1);
    }

    quint64 addContainer(Marker marker, const QVariantList &members, qsizetype size)
    {
        const quint64 index = m_objects.size();
        m_objects.push_back({sizedMarker(marker, size), {}});
        std::vector<quint64> references;
        for (const QVariant &member : members) references.push_back(add(member));
        m_objects[index].members = std::move(references);
        return index;
    }

    quint64 addArray(QVariantList list)
    {
        list.removeIf([](const QVariant &value) { return kindOf(value) == Kind::None; });
        return addContainer(ArrayMarker, list, list.size());
    }

    quint64 addDictionary(QVariantMap map)
    {
        map.removeIf([](const auto &entry) { return kindOf(entry.value()) == Kind::None; });
        QVariantList members;
        for (const QString &key : map.keys()) members.append(key);
        members += map.values();
        return addContainer(DictionaryMarker, members, map.size());
    }

    std::vector<Object> m_objects;
    QHash<QByteArray, quint64> m_scalars;
};

} // namespace

QByteArray binaryPropertyList(const QVariant &tree)
{
    return Writer().document(tree);
}

} // namespace tomelet
