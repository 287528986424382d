#include "quillrip/emf/plus/record_reader.h"

#include "quillrip/emf/plus/field_reader.h"

#include <algorithm>

namespace quillrip::emf::plus {

namespace {

constexpr std::size_t kHeaderSize = 12;

} // namespace

RecordReader::Step RecordReader::next(Record& record)
{
    if (m_records.size - m_at < kHeaderSize)
        return Step::End;
    FieldReader fields(m_records.sub(m_at));
    record.offset = m_at;
    record.type = fields.u16();
    record.flags = fields.u16();
    const std::size_t size = fields.u32();
    const std::size_t dataSize = fields.u32();
    if (size < kHeaderSize || size > m_records.size - m_at)
        return Step::Damaged;
    constexpr std::size_t beforeDataSize = 8;
    record.body = m_records.sub(m_at + beforeDataSize, size - beforeDataSize);
    record.data = m_records.sub(m_at + kHeaderSize, std::min(dataSize, size - kHeaderSize));
    m_at += std::min((size + 3) / 4 * 4, m_records.size - m_at);
    return Step::Record;
}

} // namespace quillrip::emf::plus
