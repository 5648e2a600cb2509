// SPDX-License-Identifier: GPL-3.0-or-later
// Reads the binary form of property lists.
#include "foundation/PropertyListBinary_p.h"
#include "foundation/PropertyList_p.h"

#include <QDateTime>
#include <QHash>
#include <QTimeZone>
#include <QtEndian>

#include <bit>
#include <cmath>
#include <limits>
#include <vector>

namespace tomelet {

namespace propertylist {

namespace {

constexpr qsizetype headerSize = 8;
constexpr qsizetype trailerSize = 32;
/// Texts and data may be named many times; what they come to written out is held below this and 16 times the
/// file.
constexpr qint64 sharedPayloadAllowance = 64 << 20;

class Reader
{
public:
    explicit Reader(QByteArrayView bytes)
        : m_bytes(bytes)
    {}

    QVariant read()
    {
        if (m_bytes.size() < headerSize + trailerSize) return failed("truncated");
        const qsizetype trailer = m_bytes.size() - trailerSize;
        m_offsetSize = quint8(m_bytes[trailer + 6]);
        m_referenceSize = quint8(m_bytes[trailer + 7]);
        m_count = number(trailer + 8, 8);
        const quint64 top = number(trailer + 16, 8);
        const quint64 table = number(trailer + 24, 8);
        if (m_offsetSize < 1 || m_offsetSize > 8 || m_referenceSize < 1 || m_referenceSize > 8)
            return failed("sizes of the trailer are out of range");
        if (table < headerSize || table > quint64(trailer) || m_count > (quint64(trailer) - table) / m_offsetSize)
            return failed("the table of offsets lies outside the file");
        m_table = qsizetype(table);
        // A tree has no more members than bytes to name them with: more are the same containers again and
        // again.
        m_nodesLeft = m_bytes.size();
        m_payloadLeft = sharedPayloadAllowance + 16 * m_bytes.size();
        return object(top, 1);
    }

    QString error() const { return m_error; }

private:
    QVariant failed(const char *what)
    {
        if (m_error.isEmpty())
            m_error = QStringLiteral("object %1 at byte %2: %3").arg(m_object).arg(m_at).arg(QLatin1StringView(what));
        return {};
    }

    quint64 number(qsizetype at, int size) const
    {
        quint64 result = 0;
        for (int i = 0; i < size; ++i) result = result << 8 | quint8(m_bytes[at + i]);
        return result;
    }

    // Bytes that objects may take end where the table of offsets begins.
    bool holds(qsizetype at, quint64 size) const { return at <= m_table && size <= quint64(m_table - at); }

    QVariant object(quint64 index, int depth)
    {
        m_object = index;
        if (index >= m_count) return failed("no such object");
        const quint64 offset = number(m_table + qsizetype(index) * m_offsetSize, m_offsetSize);
        if (offset < headerSize || offset >= quint64(m_table)) return failed("the offset lies outside the file");
        m_at = qsizetype(offset);
        if (--m_nodesLeft < 0) return failed("containers are shared too often");
        const quint8 first = quint8(m_bytes[m_at]);
        return value(first >> 4, first & 0xF, m_at + 1, index, depth);
    }

    QVariant value(int marker, int detail, qsizetype at, quint64 index, int depth)
    {
        switch (marker) {
        case SimpleMarker:
            if (detail == 8 || detail == 9) return detail == 9;
            return failed("unknown value");
        case IntegerMarker: return integer(at, detail);
        case RealMarker: return real(at, detail);
        case DateMarker: return detail == 3 ? date(at) : failed("unknown form of date");
        case UidMarker: return uid(at, detail + 1);
        default: break;
        }
        quint64 size = quint64(detail);
        if (detail == 0xF && !extendedSize(at, size)) return failed("the size is no integer");
        switch (marker) {
        case DataMarker:
        case AsciiMarker:
        case Utf16Marker: return payload(marker, at, size, index);
        case ArrayMarker:
        case SetMarker: return array(at, size, depth);
        case DictionaryMarker: return dictionary(at, size, depth);
        default: return failed("unknown kind of object");
        }
    }

    // A size of 15 and more stands as an integer object behind the first byte; `at` moves behind it.
    bool extendedSize(qsizetype &at, quint64 &size) const
    {
        if (!holds(at, 1) || quint8(m_bytes[at]) >> 4 != IntegerMarker) return false;
        const int power = m_bytes[at] & 0xF;
        if (power > 3 || !holds(at + 1, 1U << power)) return false;
        size = number(at + 1, 1 << power);
        at += 1 + (1 << power);
        return true;
    }

    // Short integers have no sign, those of 8 bytes have one, and those of 16 hold what needs all 64 bits.
    QVariant integer(qsizetype at, int power)
    {
        if (power > 4 || !holds(at, 1U << power)) return failed("an integer is cut off or too long");
        if (power < 4) return qlonglong(number(at, 1 << power));
        const quint64 high = number(at, 8);
        const quint64 low = number(at + 8, 8);
        if (high + (low >> 63) == 0) return qlonglong(low);
        return double(qint64(high)) * 0x1p64 + double(low);
    }

    QVariant real(qsizetype at, int power)
    {
        if ((power != 2 && power != 3) || !holds(at, 1U << power)) return failed("a real is cut off or too long");
        if (power == 2) return double(std::bit_cast<float>(quint32(number(at, 4))));
        return std::bit_cast<double>(number(at, 8));
    }

    QVariant date(qsizetype at)
    {
        if (!holds(at, 8)) return failed("a date is cut off");
        const double milliseconds = (std::bit_cast<double>(number(at, 8)) + secondsTo2001) * 1000;
        if (!isDateInRange(milliseconds)) return failed("a date is out of range");
        return QDateTime::fromMSecsSinceEpoch(qint64(std::floor(milliseconds + 0.5)), QTimeZone::utc());
    }

    // References of keyed archives, in the shape in which the XML form writes them.
    QVariant uid(qsizetype at, int size)
    {
        if (size > 8 || !holds(at, quint64(size))) return failed("a reference is cut off or too long");
        return QVariantMap{{QStringLiteral("CF$UID"), qlonglong(number(at, size))}};
    }

    QVariant payload(int marker, qsizetype at, quint64 size, quint64 index)
    {
        if (!holds(at, size) || (marker == Utf16Marker && !holds(at, size * 2)))
            return failed("text or data is cut off");
        m_payloadLeft -= qint64(size);
        if (m_payloadLeft < 0) return failed("texts are shared too often");
        QVariant &known = m_payloads[index];
        if (!known.isValid()) known = decodedPayload(marker, m_bytes.sliced(at), qsizetype(size));
        return known;
    }

    static QVariant decodedPayload(int marker, QByteArrayView bytes, qsizetype size)
    {
        if (marker == DataMarker) return bytes.first(size).toByteArray();
        if (marker == AsciiMarker) return QString::fromLatin1(bytes.first(size));
        QString text(size, Qt::Uninitialized);
        qFromBigEndian<quint16>(bytes.data(), size, text.data());
        return text;
    }

    quint64 reference(qsizetype list, qsizetype i) const { return number(list + i * m_referenceSize, m_referenceSize); }

    bool holdsReferences(qsizetype at, quint64 count) const
    {
        return holds(at, 0) && count <= quint64(m_table - at) / m_referenceSize;
    }

    QVariant array(qsizetype at, quint64 size, int depth)
    {
        if (depth > deepestNesting) return failed("nested too deep");
        if (!holdsReferences(at, size)) return failed("an array is cut off");
        QVariantList list;
        for (qsizetype i = 0; i < qsizetype(size) && m_error.isEmpty(); ++i)
            list.append(object(reference(at, i), depth + 1));
        return m_error.isEmpty() ? QVariant(list) : QVariant();
    }

    QVariant dictionary(qsizetype at, quint64 size, int depth)
    {
        if (depth > deepestNesting) return failed("nested too deep");
        if (size > quint64(m_bytes.size()) || !holdsReferences(at, size * 2)) return failed("a dictionary is cut off");
        QVariantMap map;
        for (qsizetype i = 0; i < qsizetype(size) && m_error.isEmpty(); ++i) {
            const QVariant key = object(reference(at, i), deepestNesting + 1);
            if (key.typeId() != QMetaType::QString) return failed("a key is no text");
            map.insert(key.toString(), object(reference(at, qsizetype(size) + i), depth + 1));
        }
        return m_error.isEmpty() ? QVariant(map) : QVariant();
    }

    QByteArrayView m_bytes;
    int m_offsetSize = 0;
    int m_referenceSize = 0;
    quint64 m_count = 0;
    qsizetype m_table = 0;
    qint64 m_nodesLeft = 0;
    qint64 m_payloadLeft = 0;
    QHash<quint64, QVariant> m_payloads;
    quint64 m_object = 0;
    qsizetype m_at = 0;
    QString m_error;
};

} // namespace

QVariant parseBinary(QByteArrayView bytes, QString &error)
{
    Reader reader(bytes);
    QVariant tree = reader.read();
    error = reader.error();
    return error.isEmpty() ? tree : QVariant();
}

} // namespace propertylist

} // namespace tomelet
