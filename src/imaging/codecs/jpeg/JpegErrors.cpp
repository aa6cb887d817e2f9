#include "imaging/codecs/jpeg/JpegErrors.h"

#include "imaging/codecs/jpeg/JpegLeftovers.h"

#include <cstring>

#include <jerror.h>

namespace vellumine::imaging::jpeg {

namespace {

Error::Kind kindOf(int code)
{
    switch (code) {
    case JERR_OUT_OF_MEMORY:
        return Error::Kind::outOfMemory;
    case JERR_BAD_PRECISION: // 12 bits
    case JERR_SOF_UNSUPPORTED: // lossless and hierarchical
    case JERR_ARITH_NOTIMPL:
    case JERR_CCIR601_NOTIMPL:
    case JERR_CONVERSION_NOTIMPL:
    case JERR_FRACT_SAMPLE_NOTIMPL:
    case JERR_NOTIMPL:
    case JERR_NOT_COMPILED:
        return Error::Kind::unsupported;
    case JERR_INPUT_EMPTY:
    case JERR_INPUT_EOF:
        return Error::Kind::truncated;
    default:
        return Error::Kind::malformed;
    }
}

} // namespace

Errors::Errors()
    : jpeg_error_mgr {}
{
    jpeg_std_error(this);
    error_exit = exitWithError;
    emit_message = judgeMessage;
    output_message = [](j_common_ptr /*library*/) {};
}

void Errors::fail(Error::Kind kind, const char* detail)
{
    m_kind = kind;
    std::strncpy(m_detail.data(), detail, m_detail.size() - 1);
    m_guard.leave();
}

void Errors::exitWithError(j_common_ptr library)
{
    Errors& errors = errorsOf(library);
    errors.m_kind = errors.m_overridingKind.value_or(kindOf(errors.msg_code));
    errors.format_message(library, errors.m_detail.data());
    errors.m_guard.leave();
}

void Errors::judgeMessage(j_common_ptr library, int level)
{
    if (level >= 0) {
        return; // a trace
    }
    Errors& errors = errorsOf(library);
    ++errors.num_warnings;
    const Error::Kind damaged = errors.m_overridingKind.value_or(Error::Kind::malformed);
    switch (errors.msg_code) {
    case JWRN_HIT_MARKER: // the scan's data ended before its last block
        errors.fail(Error::Kind::truncated, "picture data is missing");
    case JWRN_HUFF_BAD_CODE:
    case JWRN_ARITH_BAD_CODE:
        errors.fail(damaged, "picture data is damaged");
    case JWRN_MUST_RESYNC: // a restart interval was lost or made up
        errors.fail(damaged, "a part of the picture data is lost");
    case JWRN_EXTRANEOUS_DATA:
        if (isDataLost(*reinterpret_cast<j_decompress_ptr>(library))) {
            errors.fail(damaged, "picture data is left over");
        }
        break;
    default:
        break;
    }
}

} // namespace vellumine::imaging::jpeg
