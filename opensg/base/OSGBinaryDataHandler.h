/// Abstract byte sink and source of the binary field format (big-endian).
#ifndef _OSGBINARYDATAHANDLER_H_
#define _OSGBINARYDATAHANDLER_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGReal16.h>

#include <cstring>
#include <string>
#include <vector>

OSG_BEGIN_NAMESPACE

inline UInt16 osghtons(UInt16 v) { return __builtin_bswap16(v); }
inline UInt32 osghtonl(UInt32 v) { return __builtin_bswap32(v); }
inline UInt64 osghtonll(UInt64 v) { return __builtin_bswap64(v); }
inline UInt16 osgntohs(UInt16 v) { return __builtin_bswap16(v); }
inline UInt32 osgntohl(UInt32 v) { return __builtin_bswap32(v); }
inline UInt64 osgntohll(UInt64 v) { return __builtin_bswap64(v); }

inline Real32 osghtonf(Real32 v)
{
    UInt32 b;
    memcpy(&b, &v, 4);
    b = osghtonl(b);
    memcpy(&v, &b, 4);
    return v;
}
inline Real32 osgntohf(Real32 v) { return osghtonf(v); }

inline Real64 osghtond(Real64 v)
{
    UInt64 b;
    memcpy(&b, &v, 8);
    b = osghtonll(b);
    memcpy(&v, &b, 8);
    return v;
}
inline Real64 osgntohd(Real64 v) { return osghtond(v); }

class BinaryDataHandler
{
  public:
    struct ReadError
    {
        ReadError(const Char8 *reason) : _reason(reason) {}
        std::string _reason;
    };
    struct WriteError
    {
        WriteError(const Char8 *reason) : _reason(reason) {}
        std::string _reason;
    };

    BinaryDataHandler(UInt32 zeroCopyThreshold = 0, bool networkOrder = true);
    virtual ~BinaryDataHandler(void);

    // raw bytes
    void put(const void *src, UInt32 size);
    void putAndFree(MemoryHandle src, UInt32 size);
    void get(void *dst, UInt32 size);
    void getAndAlloc(MemoryHandle &src, UInt32 size);

    // single values: always big-endian
    void putValue(const bool &value);
    void putValue(const UInt8 &value) { put(&value, 1); }
    void putValue(const Int8 &value) { put(&value, 1); }
    void putValue(const UInt16 &value) { putSwapped(value); }
    void putValue(const Int16 &value) { putSwapped(value); }
    void putValue(const UInt32 &value) { putSwapped(value); }
    void putValue(const Int32 &value) { putSwapped(value); }
    void putValue(const UInt64 &value) { putSwapped(value); }
    void putValue(const Int64 &value) { putSwapped(value); }
    void putValue(const Real16 &value) { putSwapped(value.bits()); }
    void putValue(const Real32 &value) { putSwapped(value); }
    void putValue(const Real64 &value) { putSwapped(value); }
    void putValue(const Real128 &value) { putSwapped(value); }
    void putValue(const std::string &value);

    void getValue(bool &value);
    void getValue(UInt8 &value) { get(&value, 1); }
    void getValue(Int8 &value) { get(&value, 1); }
    void getValue(UInt16 &value) { getSwapped(value); }
    void getValue(Int16 &value) { getSwapped(value); }
    void getValue(UInt32 &value) { getSwapped(value); }
    void getValue(Int32 &value) { getSwapped(value); }
    void getValue(UInt64 &value) { getSwapped(value); }
    void getValue(Int64 &value) { getSwapped(value); }
    void getValue(Real16 &value);
    void getValue(Real32 &value) { getSwapped(value); }
    void getValue(Real64 &value) { getSwapped(value); }
    void getValue(Real128 &value) { getSwapped(value); }
    void getValue(std::string &value);

    // arrays: big-endian element by element in network order, else one block
    void putValues(const bool *value, UInt32 size);
    void putValues(const UInt8 *value, UInt32 size) { put(value, size); }
    void putValues(const Int8 *value, UInt32 size) { put(value, size); }
    void putValues(const UInt16 *value, UInt32 size) { putArray(value, size); }
    void putValues(const Int16 *value, UInt32 size) { putArray(value, size); }
    void putValues(const UInt32 *value, UInt32 size) { putArray(value, size); }
    void putValues(const Int32 *value, UInt32 size) { putArray(value, size); }
    void putValues(const UInt64 *value, UInt32 size) { putArray(value, size); }
    void putValues(const Int64 *value, UInt32 size) { putArray(value, size); }
    void putValues(const Real16 *value, UInt32 size) { putArray(value, size); }
    void putValues(const Real32 *value, UInt32 size) { putArray(value, size); }
    void putValues(const Real64 *value, UInt32 size) { putArray(value, size); }
    void putValues(const Real128 *value, UInt32 size) { putArray(value, size); }
    void putValues(const std::string *value, UInt32 size);

    void getValues(bool *value, UInt32 size);
    void getValues(UInt8 *value, UInt32 size) { get(value, size); }
    void getValues(Int8 *value, UInt32 size) { get(value, size); }
    void getValues(UInt16 *value, UInt32 size) { getArray(value, size); }
    void getValues(Int16 *value, UInt32 size) { getArray(value, size); }
    void getValues(UInt32 *value, UInt32 size) { getArray(value, size); }
    void getValues(Int32 *value, UInt32 size) { getArray(value, size); }
    void getValues(UInt64 *value, UInt32 size) { getArray(value, size); }
    void getValues(Int64 *value, UInt32 size) { getArray(value, size); }
    void getValues(Real16 *value, UInt32 size) { getArray(value, size); }
    void getValues(Real32 *value, UInt32 size) { getArray(value, size); }
    void getValues(Real64 *value, UInt32 size) { getArray(value, size); }
    void getValues(Real128 *value, UInt32 size) { getArray(value, size); }
    void getValues(std::string *value, UInt32 size);

    void flush(void);

    void setNetworkOrder(bool networkOrder) { _networkOrder = networkOrder; }
    bool getNetworkOrder(void) const { return _networkOrder; }

    /// True once a read ran past the end of the source (the missing bytes
    /// read as zeros); binary parsers check it instead of catching.
    bool hasReadError(void) const { return _readError; }
    void clearReadError(void) { _readError = false; }

    virtual void forceCopy(void);
    virtual void forceDirectIO(void);

  protected:
    struct MemoryBlock
    {
        MemoryBlock(MemoryHandle mem = NULL, UInt32 size = 0, UInt32 dataSize = 0) :
            _mem(mem), _size(size), _dataSize(dataSize) {}
        MemoryHandle _mem;
        UInt32       _size;
        UInt32       _dataSize;
    };
    typedef std::vector<MemoryBlock> BuffersT;

    void writeBufAdd(MemoryHandle mem, UInt32 size, UInt32 dataSize = 0);
    void readBufAdd(MemoryHandle mem, UInt32 size, UInt32 dataSize = 0);
    void writeBufClear(void);
    void readBufClear(void);

    BuffersT::iterator readBufBegin(void) { return _readBuffers.begin(); }
    BuffersT::iterator readBufEnd(void) { return _readBuffers.end(); }
    BuffersT::iterator writeBufBegin(void) { return _writeBuffers.begin(); }
    BuffersT::iterator writeBufEnd(void) { return _writeBuffers.end(); }

    /// Raw I/O of the concrete handler; the defaults only warn.
    virtual void read(MemoryHandle src, UInt32 size);
    virtual void write(MemoryHandle src, UInt32 size);

    /// Block framing: a big-endian total size, then the buffers' data.
    virtual void readBuffer(void);
    virtual void writeBuffer(void);

    BuffersT _readBuffers;
    BuffersT _writeBuffers;
    UInt32   _zeroCopyThreshold;
    bool     _networkOrder;
    bool     _readError;

  private:
    void pushBuffer(void);
    void pullBuffer(void);

    /// Reverses the bytes of one value of 1, 2, 4, 8 or 16 bytes in place.
    template <size_t N>
    static void swapBytes(UInt8 *p)
    {
        if constexpr(N == 2)
        {
            UInt16 v;
            memcpy(&v, p, 2);
            v = __builtin_bswap16(v);
            memcpy(p, &v, 2);
        }
        else if constexpr(N == 4)
        {
            UInt32 v;
            memcpy(&v, p, 4);
            v = __builtin_bswap32(v);
            memcpy(p, &v, 4);
        }
        else if constexpr(N == 8)
        {
            UInt64 v;
            memcpy(&v, p, 8);
            v = __builtin_bswap64(v);
            memcpy(p, &v, 8);
        }
        else
        {
            for(size_t i = 0; i < N / 2; ++i)
                std::swap(p[i], p[N - 1 - i]);
        }
    }

    template <class T>
    void putSwapped(T value)
    {
        UInt8 b[sizeof(T)];
        memcpy(b, &value, sizeof(T));
        swapBytes<sizeof(T)>(b);
        put(b, sizeof(T));
    }

    template <class T>
    void getSwapped(T &value)
    {
        UInt8 b[sizeof(T)];
        get(b, sizeof(T));
        swapBytes<sizeof(T)>(b);
        memcpy(&value, b, sizeof(T));
    }

    template <class T>
    void putArray(const T *values, UInt32 size)
    {
        if(!_networkOrder)
        {
            put(values, size * UInt32(sizeof(T)));
            return;
        }
        UInt8 tmp[256 * sizeof(T)];
        while(size > 0)
        {
            UInt32 n = size < 256 ? size : 256;
            memcpy(tmp, values, n * sizeof(T));
            for(UInt32 i = 0; i < n; ++i)
                swapBytes<sizeof(T)>(tmp + i * sizeof(T));
            put(tmp, n * UInt32(sizeof(T)));
            values += n;
            size -= n;
        }
    }

    template <class T>
    void getArray(T *values, UInt32 size)
    {
        get(values, size * UInt32(sizeof(T)));
        if(!_networkOrder)
            return;
        UInt8 *p = reinterpret_cast<UInt8 *>(values);
        for(UInt32 i = 0; i < size; ++i, p += sizeof(T))
            swapBytes<sizeof(T)>(p);
    }

    BuffersT::iterator _currentReadBuffer;
    UInt32             _currentReadBufferPos;
    BuffersT::iterator _currentWriteBuffer;
    UInt32             _currentWriteBufferPos;

    BinaryDataHandler(const BinaryDataHandler &);
    void operator=(const BinaryDataHandler &);
};

OSG_END_NAMESPACE

#endif
