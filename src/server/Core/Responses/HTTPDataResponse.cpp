// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/Responses/HTTPDataResponse.h"

namespace tomelet::http {

BodyPiece HTTPDataResponse::readDataOfLength(std::size_t length)
{
    if (isDone()) return {};
    if (m_offset == 0 && length >= m_data.size()) {
        // The whole body at once, as a rule: a copy. Another range may be asked for, so the data stay.
        m_offset = m_data.size();
        return BodyPiece(m_data);
    }
    std::string piece = m_data.substr(m_offset, length);
    m_offset += piece.size();
    return BodyPiece(std::move(piece));
}

} // namespace tomelet::http
