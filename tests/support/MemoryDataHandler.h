/// A BinaryDataHandler over a byte vector, for tests and benchmarks.
#ifndef _CORVANE_TESTS_MEMORYDATAHANDLER_H_
#define _CORVANE_TESTS_MEMORYDATAHANDLER_H_

#include <OpenSG/OSGBinaryDataHandler.h>

#include <cstring>
#include <vector>

namespace corvanetest
{

/// Writes into bytes() and reads back from it. The buffer is small on
/// purpose, so that values straddle buffer boundaries.
class MemoryDataHandler : public OSG::BinaryDataHandler
{
  public:
    explicit MemoryDataHandler(OSG::UInt32 bufferSize = 61)
        : OSG::BinaryDataHandler(0, true), _buffer(bufferSize), _readPos(0)
    {
        writeBufAdd(_buffer.data(), bufferSize);
        readBufAdd(_buffer.data(), bufferSize);
    }

    /// Everything flushed so far, with the handler's block framing.
    std::vector<OSG::UInt8> &bytes(void) { return _bytes; }

    /// The payload without the 4-byte size of each block.
    std::vector<OSG::UInt8> payload(void) const
    {
        std::vector<OSG::UInt8> out;
        size_t pos = 0;
        while(pos + 4 <= _bytes.size())
        {
            OSG::UInt32 n = (OSG::UInt32(_bytes[pos]) << 24) | (OSG::UInt32(_bytes[pos + 1]) << 16) |
                            (OSG::UInt32(_bytes[pos + 2]) << 8) | OSG::UInt32(_bytes[pos + 3]);
            pos += 4;
            out.insert(out.end(), _bytes.begin() + pos, _bytes.begin() + pos + n);
            pos += n;
        }
        return out;
    }

    void rewind(void) { _readPos = 0; }

  protected:
    virtual void write(OSG::MemoryHandle src, OSG::UInt32 size)
    {
        _bytes.insert(_bytes.end(), src, src + size);
    }

    virtual void read(OSG::MemoryHandle dst, OSG::UInt32 size)
    {
        OSG::UInt32 avail = OSG::UInt32(_bytes.size() - _readPos);
        OSG::UInt32 n     = size < avail ? size : avail;
        memcpy(dst, _bytes.data() + _readPos, n);
        _readPos += n;
        if(n < size)
        {
            memset(dst + n, 0, size - n);
            _readError = true;
        }
    }

  private:
    std::vector<OSG::UInt8> _buffer;
    std::vector<OSG::UInt8> _bytes;
    size_t                  _readPos;
};

} // namespace corvanetest

#endif
