#include "common/QNError.h"

#include <utility>

namespace qncomm {

QNError::QNError(std::int32_t lNumber, std::string sSource, std::string sDescription)
    : mNumber(lNumber), mSource(std::move(sSource)), mDescription(std::move(sDescription)) {}

} // namespace qncomm
