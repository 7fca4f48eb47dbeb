#include "ReadInParts.h"

SPartsRead ReadInParts(const SReadInParts& read_I) {
    SPartsRead result;
    uint16_t offset = 0;
    for (size_t parts = 0; parts < read_I.maxParts && result.data.size() < kMaxReadInPartsSize; ++parts) {
        SPart part = SPart::Bad();
        for (int attempt = 1; attempt <= read_I.attemptsPerPart && part.kind == SPart::EKind::Bad;
             ++attempt) {
            part = read_I.readPart(offset);
            if (part.kind == SPart::EKind::Bad && read_I.onBadPart) {
                read_I.onBadPart(offset, attempt);
            }
        }
        if (part.kind == SPart::EKind::End) {
            break;
        }
        if (part.kind == SPart::EKind::Bad) {
            if (read_I.onGiveUp) {
                read_I.onGiveUp(offset);
            }
            result.gaveUp = true;
            break;
        }
        result.data.insert(result.data.end(), part.data.begin(), part.data.end());
        offset = static_cast<uint16_t>(offset + part.advance);
    }
    return result;
}
