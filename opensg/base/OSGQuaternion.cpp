#include <OpenSG/OSGQuaternion.h>

#include <OpenSG/OSGMatrix.h>

#include <cmath>
#include <cstdlib>

OSG_BEGIN_NAMESPACE

namespace
{

// Reads four numbers separated by blanks or commas; missing ones are 0.
template <class T>
void parseFour(const Char8 *str, T v[4])
{
    v[0] = v[1] = v[2] = v[3] = T(0);
    if(str == NULL)
        return;
    const Char8 *p = str;
    for(UInt32 i = 0; i < 4; ++i)
    {
        while(*p == ' ' || *p == '\t' || *p == '\n' || *p == ',')
            ++p;
        Char8 *end = NULL;
        double d   = std::strtod(p, &end);
        if(end == p)
            return;
        v[i] = T(d);
        p    = end;
    }
}

} // namespace

template <class ValueTypeT>
const QuaternionBase<ValueTypeT> &QuaternionBase<ValueTypeT>::identity(void)
{
    static const QuaternionBase ident;
    return ident;
}

template <class ValueTypeT>
QuaternionBase<ValueTypeT>::QuaternionBase(const MatrixType &matrix)
{
    setValue(matrix);
}

template <class ValueTypeT>
QuaternionBase<ValueTypeT>::QuaternionBase(const VectorType &axis,
                                           ValueType         angle)
{
    setValueAsAxisRad(axis, angle);
}

template <class ValueTypeT>
QuaternionBase<ValueTypeT>::QuaternionBase(const VectorType &from,
                                           const VectorType &to)
{
    setValue(from, to);
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::setIdentity(void)
{
    _quat[0] = _quat[1] = _quat[2] = ValueType(0);
    _quat[3] = ValueType(1);
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::setValueAsAxisRad(const VectorType &axis,
                                                   ValueType         angle)
{
    VectorType a(axis);
    ValueType  len = a.length();
    // No axis, no rotation.
    if(len < ValueType(Eps))
    {
        setIdentity();
        return;
    }
    ValueType s = std::sin(angle / ValueType(2)) / len;
    _quat[0]    = a[0] * s;
    _quat[1]    = a[1] * s;
    _quat[2]    = a[2] * s;
    _quat[3]    = std::cos(angle / ValueType(2));
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::setValueAsAxisRad(ValueType x, ValueType y,
                                                   ValueType z, ValueType w)
{
    setValueAsAxisRad(VectorType(x, y, z), w);
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::setValueAsAxisRad(const ValueType *v)
{
    setValueAsAxisRad(VectorType(v[0], v[1], v[2]), v[3]);
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::setValueAsAxisRad(const Char8 *str)
{
    ValueType v[4];
    parseFour(str, v);
    setValueAsAxisRad(v);
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::setValueAsAxisDeg(const VectorType &axis,
                                                   ValueType         angle)
{
    setValueAsAxisRad(axis, osgdegree2rad(angle));
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::setValueAsAxisDeg(ValueType x, ValueType y,
                                                   ValueType z, ValueType w)
{
    setValueAsAxisDeg(VectorType(x, y, z), w);
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::setValueAsAxisDeg(const ValueType *v)
{
    setValueAsAxisDeg(VectorType(v[0], v[1], v[2]), v[3]);
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::setValueAsAxisDeg(const Char8 *str)
{
    ValueType v[4];
    parseFour(str, v);
    setValueAsAxisDeg(v);
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::setValueAsQuat(ValueType x, ValueType y,
                                                ValueType z, ValueType w)
{
    _quat[0] = x;
    _quat[1] = y;
    _quat[2] = z;
    _quat[3] = w;
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::setValueAsQuat(const ValueType *q)
{
    setValueAsQuat(q[0], q[1], q[2], q[3]);
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::setValue(const MatrixType &m)
{
    // Element (row r, column c) is m[c][r]. Pick the largest of w, x, y, z
    // to divide by, which keeps the result accurate for every angle.
    ValueType trace = m[0][0] + m[1][1] + m[2][2];
    if(trace > ValueType(0))
    {
        ValueType s = std::sqrt(trace + ValueType(1)) * ValueType(2);
        _quat[3]    = ValueType(0.25) * s;
        _quat[0]    = (m[1][2] - m[2][1]) / s;
        _quat[1]    = (m[2][0] - m[0][2]) / s;
        _quat[2]    = (m[0][1] - m[1][0]) / s;
    }
    else if(m[0][0] > m[1][1] && m[0][0] > m[2][2])
    {
        ValueType s =
            std::sqrt(ValueType(1) + m[0][0] - m[1][1] - m[2][2]) * ValueType(2);
        _quat[3] = (m[1][2] - m[2][1]) / s;
        _quat[0] = ValueType(0.25) * s;
        _quat[1] = (m[1][0] + m[0][1]) / s;
        _quat[2] = (m[2][0] + m[0][2]) / s;
    }
    else if(m[1][1] > m[2][2])
    {
        ValueType s =
            std::sqrt(ValueType(1) + m[1][1] - m[0][0] - m[2][2]) * ValueType(2);
        _quat[3] = (m[2][0] - m[0][2]) / s;
        _quat[0] = (m[1][0] + m[0][1]) / s;
        _quat[1] = ValueType(0.25) * s;
        _quat[2] = (m[2][1] + m[1][2]) / s;
    }
    else
    {
        ValueType s =
            std::sqrt(ValueType(1) + m[2][2] - m[0][0] - m[1][1]) * ValueType(2);
        _quat[3] = (m[0][1] - m[1][0]) / s;
        _quat[0] = (m[2][0] + m[0][2]) / s;
        _quat[1] = (m[2][1] + m[1][2]) / s;
        _quat[2] = ValueType(0.25) * s;
    }
    normalize();
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::setValue(ValueType alpha, ValueType beta,
                                          ValueType gamma)
{
    const ValueType half = ValueType(0.5);
    const ValueType sx = std::sin(alpha * half), cx = std::cos(alpha * half);
    const ValueType sy = std::sin(beta * half), cy = std::cos(beta * half);
    const ValueType sz = std::sin(gamma * half), cz = std::cos(gamma * half);

    _quat[0] = sx * cy * cz - cx * sy * sz;
    _quat[1] = cx * sy * cz + sx * cy * sz;
    _quat[2] = cx * cy * sz - sx * sy * cz;
    _quat[3] = cx * cy * cz + sx * sy * sz;
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::setValue(const VectorType &from,
                                          const VectorType &to)
{
    VectorType f(from), t(to);
    f.normalize();
    t.normalize();

    ValueType c = f.dot(t);
    if(c > ValueType(1) - ValueType(Eps))
    {
        setIdentity();
        return;
    }
    if(c < ValueType(-1) + ValueType(Eps))
    {
        // Opposite directions: any axis perpendicular to from will do.
        VectorType axis = f.cross(VectorType(1, 0, 0));
        if(axis.length() < ValueType(Eps))
            axis = f.cross(VectorType(0, 1, 0));
        setValueAsAxisRad(axis, ValueType(3.141592653589793238462643383279502884L));
        return;
    }
    setValueAsAxisRad(f.cross(t), std::acos(c));
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::getValueAsAxisRad(VectorType &axis,
                                                   ValueType  &angle) const
{
    ValueType w = _quat[3];
    w           = w > ValueType(1) ? ValueType(1)
                                   : (w < ValueType(-1) ? ValueType(-1) : w);
    angle       = ValueType(2) * std::acos(w);

    ValueType s = std::sqrt(ValueType(1) - w * w);
    if(s < ValueType(Eps))
    {
        // No rotation: the axis is arbitrary.
        axis.setValues(0, 0, 1);
        angle = ValueType(0);
        return;
    }
    axis.setValues(_quat[0] / s, _quat[1] / s, _quat[2] / s);
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::getValueAsAxisRad(ValueType &x, ValueType &y,
                                                   ValueType &z,
                                                   ValueType &w) const
{
    VectorType axis;
    getValueAsAxisRad(axis, w);
    x = axis[0];
    y = axis[1];
    z = axis[2];
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::getValueAsAxisDeg(VectorType &axis,
                                                   ValueType  &angle) const
{
    getValueAsAxisRad(axis, angle);
    angle = osgrad2degree(angle);
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::getValueAsAxisDeg(ValueType &x, ValueType &y,
                                                   ValueType &z,
                                                   ValueType &w) const
{
    getValueAsAxisRad(x, y, z, w);
    w = osgrad2degree(w);
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::getValueAsQuat(ValueType &x, ValueType &y,
                                                ValueType &z,
                                                ValueType &w) const
{
    x = _quat[0];
    y = _quat[1];
    z = _quat[2];
    w = _quat[3];
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::getValuesOnly(MatrixType &m) const
{
    const ValueType x = _quat[0], y = _quat[1], z = _quat[2], w = _quat[3];
    const ValueType one = ValueType(1), two = ValueType(2);

    // m[c][r] is row r, column c.
    m[0][0] = one - two * (y * y + z * z);
    m[0][1] = two * (x * y + z * w);
    m[0][2] = two * (x * z - y * w);

    m[1][0] = two * (x * y - z * w);
    m[1][1] = one - two * (x * x + z * z);
    m[1][2] = two * (y * z + x * w);

    m[2][0] = two * (x * z + y * w);
    m[2][1] = two * (y * z - x * w);
    m[2][2] = one - two * (x * x + y * y);
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::getValue(MatrixType &m) const
{
    m.setIdentity();
    getValuesOnly(m);
}

template <class ValueTypeT>
ValueTypeT QuaternionBase<ValueTypeT>::length(void) const
{
    return std::sqrt(_quat[0] * _quat[0] + _quat[1] * _quat[1] +
                     _quat[2] * _quat[2] + _quat[3] * _quat[3]);
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::normalize(void)
{
    ValueType len = length();
    if(len < ValueType(Eps))
    {
        setIdentity();
        return;
    }
    for(UInt32 i = 0; i < 4; ++i)
        _quat[i] /= len;
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::invert(void)
{
    ValueType l2 = _quat[0] * _quat[0] + _quat[1] * _quat[1] +
                   _quat[2] * _quat[2] + _quat[3] * _quat[3];
    if(l2 < ValueType(Eps) * ValueType(Eps))
    {
        setIdentity();
        return;
    }
    _quat[0] = -_quat[0] / l2;
    _quat[1] = -_quat[1] / l2;
    _quat[2] = -_quat[2] / l2;
    _quat[3] = _quat[3] / l2;
}

template <class ValueTypeT>
QuaternionBase<ValueTypeT> QuaternionBase<ValueTypeT>::inverse(void) const
{
    QuaternionBase q(*this);
    q.invert();
    return q;
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::multVec(const VectorType &src,
                                         VectorType       &dst) const
{
    // v' = v + 2w (q x v) + 2 q x (q x v), with q the vector part.
    VectorType q(_quat[0], _quat[1], _quat[2]);
    VectorType v(src);
    VectorType t = q.cross(v) * ValueType(2);
    dst          = v + t * _quat[3] + q.cross(t);
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::scaleAngle(ValueType factor)
{
    VectorType axis;
    ValueType  angle;
    getValueAsAxisRad(axis, angle);
    setValueAsAxisRad(axis, angle * factor);
}

template <class ValueTypeT>
QuaternionBase<ValueTypeT>
QuaternionBase<ValueTypeT>::slerp(const QuaternionBase &a,
                                  const QuaternionBase &b, ValueType t)
{
    ValueType c = a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3];
    ValueType sign = ValueType(1);
    // Take the short way round.
    if(c < ValueType(0))
    {
        c    = -c;
        sign = ValueType(-1);
    }

    ValueType wa, wb;
    if(ValueType(1) - c > ValueType(Eps))
    {
        ValueType omega = std::acos(c);
        ValueType s     = std::sin(omega);
        wa              = std::sin((ValueType(1) - t) * omega) / s;
        wb              = std::sin(t * omega) / s;
    }
    else
    {
        wa = ValueType(1) - t;
        wb = t;
    }
    wb *= sign;

    QuaternionBase r(a[0] * wa + b[0] * wb, a[1] * wa + b[1] * wb,
                     a[2] * wa + b[2] * wb, a[3] * wa + b[3] * wb);
    r.normalize();
    return r;
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::mult(const QuaternionBase &o)
{
    // Hamilton product this * o.
    const ValueType ax = _quat[0], ay = _quat[1], az = _quat[2], aw = _quat[3];
    const ValueType bx = o[0], by = o[1], bz = o[2], bw = o[3];
    _quat[0] = aw * bx + ax * bw + ay * bz - az * by;
    _quat[1] = aw * by - ax * bz + ay * bw + az * bx;
    _quat[2] = aw * bz + ax * by - ay * bx + az * bw;
    _quat[3] = aw * bw - ax * bx - ay * by - az * bz;
}

template <class ValueTypeT>
void QuaternionBase<ValueTypeT>::multLeft(const QuaternionBase &o)
{
    QuaternionBase r(o);
    r.mult(*this);
    *this = r;
}

template <class ValueTypeT>
bool QuaternionBase<ValueTypeT>::equals(const QuaternionBase &q,
                                        ValueType             tolerance) const
{
    for(UInt32 i = 0; i < 4; ++i)
        if(_quat[i] - q[i] > tolerance || q[i] - _quat[i] > tolerance)
            return false;
    return true;
}

template class QuaternionBase<Real32>;
template class QuaternionBase<Real64>;

OSG_END_NAMESPACE
