#include "h264parameters.h"

#include <QByteArray>

#include <algorithm>
#include <iterator>
#include <optional>

namespace H264Parameters {

namespace {

constexpr int SpsType = 7;

// Reads bits MSB first from a NAL unit's payload with its emulation prevention bytes removed.
class BitReader
{
public:
    explicit BitReader(QByteArray bytes) : m_bytes(std::move(bytes)) {}

    bool ok() const { return m_ok; }

    quint32 bits(int count)
    {
        quint32 value = 0;
        for (int i = 0; i < count; ++i) {
            const qsizetype byte = m_pos >> 3;
            if (byte >= m_bytes.size()) {
                m_ok = false;
                return 0;
            }
            value = (value << 1) | ((quint8(m_bytes[byte]) >> (7 - (m_pos & 7))) & 1);
            ++m_pos;
        }
        return value;
    }
    bool flag() { return bits(1) != 0; }
    quint32 ue()
    {
        int zeros = 0;
        while (m_ok && !flag()) {
            if (++zeros > 31)
                m_ok = false;
        }
        return m_ok ? (quint32(1) << zeros) - 1 + bits(zeros) : 0;
    }
    qint32 se()
    {
        const quint32 code = ue();
        return code & 1 ? qint32((code + 1) / 2) : -qint32(code / 2);
    }

private:
    QByteArray m_bytes;
    qsizetype m_pos = 0;
    bool m_ok = true;
};

// The payload of the first SPS, without its header byte and with 00 00 03 turned into 00 00.
std::optional<QByteArray> firstSps(const uchar *data, int size)
{
    for (int i = 0; i + 3 < size; ++i) {
        if (data[i] != 0 || data[i + 1] != 0 || data[i + 2] != 1 || (data[i + 3] & 0x1f) != SpsType)
            continue;
        QByteArray payload;
        int zeros = 0;
        for (int j = i + 4; j < size; ++j) {
            if (zeros >= 2 && data[j] <= 1)
                break; // the next start code
            if (zeros >= 2 && data[j] == 3) {
                zeros = 0;
                continue;
            }
            zeros = data[j] == 0 ? zeros + 1 : 0;
            payload.append(char(data[j]));
        }
        return payload;
    }
    return std::nullopt;
}

void skipScalingList(BitReader &in, int count)
{
    int last = 8;
    int next = 8;
    for (int i = 0; i < count && in.ok(); ++i) {
        if (next != 0)
            next = (last + in.se() + 256) % 256;
        last = next == 0 ? last : next;
    }
}

} // namespace

AVRational frameRate(const uchar *data, int size)
{
    const std::optional<QByteArray> sps = firstSps(data, size);
    if (!sps)
        return {0, 1};
    BitReader in(*sps);
    const quint32 profile = in.bits(8);
    in.bits(16); // constraint flags and level
    in.ue();     // seq_parameter_set_id
    static constexpr quint32 highProfiles[] = {100, 110, 122, 244, 44, 83, 86, 118, 128, 138, 139, 134, 135};
    if (std::find(std::begin(highProfiles), std::end(highProfiles), profile) != std::end(highProfiles)) {
        const quint32 chromaFormat = in.ue();
        if (chromaFormat == 3)
            in.flag(); // separate_colour_plane_flag
        in.ue();       // bit depths
        in.ue();
        in.flag(); // qpprime_y_zero_transform_bypass_flag
        if (in.flag()) {
            for (int i = 0; i < (chromaFormat == 3 ? 12 : 8); ++i) {
                if (in.flag())
                    skipScalingList(in, i < 6 ? 16 : 64);
            }
        }
    }
    in.ue(); // log2_max_frame_num_minus4
    const quint32 pocType = in.ue();
    if (pocType == 0) {
        in.ue();
    } else if (pocType == 1) {
        in.flag();
        in.se();
        in.se();
        const quint32 cycle = in.ue();
        for (quint32 i = 0; i < cycle && in.ok(); ++i)
            in.se();
    }
    in.ue();   // max_num_ref_frames
    in.flag(); // gaps_in_frame_num_value_allowed_flag
    in.ue();   // picture size in macroblocks
    in.ue();
    if (!in.flag()) // frame_mbs_only_flag
        in.flag();
    in.flag(); // direct_8x8_inference_flag
    if (in.flag()) {
        for (int i = 0; i < 4; ++i)
            in.ue(); // cropping
    }
    if (!in.flag()) // vui_parameters_present_flag
        return {0, 1};
    if (in.flag() && in.bits(8) == 255) // aspect ratio, maybe given as a pair
        in.bits(32);
    if (in.flag()) // overscan_info_present_flag
        in.flag();
    if (in.flag()) { // video_signal_type_present_flag
        in.bits(4);
        if (in.flag())
            in.bits(24);
    }
    if (in.flag()) { // chroma_loc_info_present_flag
        in.ue();
        in.ue();
    }
    if (!in.flag()) // timing_info_present_flag
        return {0, 1};
    const quint32 unitsInTick = in.bits(32);
    const quint32 timeScale = in.bits(32);
    if (!in.ok() || unitsInTick == 0 || timeScale == 0)
        return {0, 1};
    AVRational rate{0, 1};
    av_reduce(&rate.num, &rate.den, timeScale, qint64(unitsInTick) * 2, 1 << 30);
    return rate;
}

} // namespace H264Parameters
