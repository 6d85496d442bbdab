#include <OpenSG/OSGMatrix.h>

#include <OpenSG/OSGLog.h>

#include <cmath>
#include <cstdlib>
#include <iomanip>

OSG_BEGIN_NAMESPACE

namespace
{

// Below this the determinant counts as zero.
const double DetEps = 1e-30;

// 3x3 helpers on plain arrays, a[c][r] as in the matrix.
template <class T>
struct Mat3
{
    T a[3][3];

    T operator()(UInt32 r, UInt32 c) const { return a[c][r]; }
    T &operator()(UInt32 r, UInt32 c) { return a[c][r]; }

    T det(void) const
    {
        return a[0][0] * (a[1][1] * a[2][2] - a[2][1] * a[1][2]) -
               a[1][0] * (a[0][1] * a[2][2] - a[2][1] * a[0][2]) +
               a[2][0] * (a[0][1] * a[1][2] - a[1][1] * a[0][2]);
    }

    // Transposed inverse (the cofactor matrix divided by det).
    bool inverseTransposed(Mat3 &out) const
    {
        T d = det();
        if(std::fabs(double(d)) < DetEps)
            return false;
        T inv = T(1) / d;
        for(UInt32 r = 0; r < 3; ++r)
            for(UInt32 c = 0; c < 3; ++c)
            {
                UInt32 r1 = (r + 1) % 3, r2 = (r + 2) % 3;
                UInt32 c1 = (c + 1) % 3, c2 = (c + 2) % 3;
                out(r, c) = ((*this)(r1, c1) * (*this)(r2, c2) -
                             (*this)(r1, c2) * (*this)(r2, c1)) *
                            inv;
            }
        return true;
    }

    T frobenius2(void) const
    {
        T s = 0;
        for(UInt32 c = 0; c < 3; ++c)
            for(UInt32 r = 0; r < 3; ++r)
                s += a[c][r] * a[c][r];
        return s;
    }
};

template <class T>
Mat3<T> mul(const Mat3<T> &x, const Mat3<T> &y)
{
    Mat3<T> z;
    for(UInt32 r = 0; r < 3; ++r)
        for(UInt32 c = 0; c < 3; ++c)
            z(r, c) = x(r, 0) * y(0, c) + x(r, 1) * y(1, c) + x(r, 2) * y(2, c);
    return z;
}

template <class T>
Mat3<T> transpose3(const Mat3<T> &x)
{
    Mat3<T> z;
    for(UInt32 r = 0; r < 3; ++r)
        for(UInt32 c = 0; c < 3; ++c)
            z(r, c) = x(c, r);
    return z;
}

// Eigen-decomposition of a symmetric 3x3 matrix by cyclic Jacobi rotations:
// s = v * diag(e) * v^T, the columns of v being the eigenvectors.
template <class T>
void symmetricEigen(Mat3<T> s, Mat3<T> &v, T e[3])
{
    for(UInt32 r = 0; r < 3; ++r)
        for(UInt32 c = 0; c < 3; ++c)
            v(r, c) = T(r == c ? 1 : 0);

    for(UInt32 sweep = 0; sweep < 50; ++sweep)
    {
        T off = std::fabs(s(0, 1)) + std::fabs(s(0, 2)) + std::fabs(s(1, 2));
        if(off < T(1e-12) * (std::fabs(s(0, 0)) + std::fabs(s(1, 1)) +
                             std::fabs(s(2, 2))) ||
           off == T(0))
            break;

        for(UInt32 p = 0; p < 2; ++p)
            for(UInt32 q = p + 1; q < 3; ++q)
            {
                if(s(p, q) == T(0))
                    continue;
                T theta = (s(q, q) - s(p, p)) / (T(2) * s(p, q));
                T t     = (theta >= 0 ? T(1) : T(-1)) /
                      (std::fabs(theta) + std::sqrt(theta * theta + T(1)));
                T c  = T(1) / std::sqrt(t * t + T(1));
                T sn = t * c;

                // s := J^T s J, v := v J for the rotation J in plane (p, q).
                for(UInt32 k = 0; k < 3; ++k)
                {
                    T skp = s(k, p), skq = s(k, q);
                    s(k, p) = c * skp - sn * skq;
                    s(k, q) = sn * skp + c * skq;
                }
                for(UInt32 k = 0; k < 3; ++k)
                {
                    T spk = s(p, k), sqk = s(q, k);
                    s(p, k) = c * spk - sn * sqk;
                    s(q, k) = sn * spk + c * sqk;
                }
                for(UInt32 k = 0; k < 3; ++k)
                {
                    T vkp = v(k, p), vkq = v(k, q);
                    v(k, p) = c * vkp - sn * vkq;
                    v(k, q) = sn * vkp + c * vkq;
                }
            }
    }

    for(UInt32 i = 0; i < 3; ++i)
        e[i] = s(i, i);
}

template <class T>
void quatFromMat3(const Mat3<T> &m, QuaternionBase<T> &q)
{
    TransformationMatrix<T> full;
    for(UInt32 c = 0; c < 3; ++c)
        for(UInt32 r = 0; r < 3; ++r)
            full[c][r] = m(r, c);
    q.setValue(full);
}

template <class T>
Mat3<T> mat3FromQuat(const QuaternionBase<T> &q)
{
    TransformationMatrix<T> full;
    q.getValue(full);
    Mat3<T> m;
    for(UInt32 c = 0; c < 3; ++c)
        for(UInt32 r = 0; r < 3; ++r)
            m(r, c) = full[c][r];
    return m;
}

} // namespace

template <class ValueTypeT>
const TransformationMatrix<ValueTypeT> &
TransformationMatrix<ValueTypeT>::identity(void)
{
    static const TransformationMatrix ident;
    return ident;
}

template <class ValueTypeT>
void TransformationMatrix<ValueTypeT>::setValue(const Char8 *str,
                                                bool        transposed)
{
    setIdentity();
    if(str == NULL)
        return;

    ValueType    v[16] = {};
    UInt32       n     = 0;
    const Char8 *p     = str;
    for(; n < 16; ++n)
    {
        while(*p == ' ' || *p == '\t' || *p == '\n' || *p == '\r' || *p == ',')
            ++p;
        Char8 *end = NULL;
        double d   = std::strtod(p, &end);
        if(end == p)
            break;
        v[n] = ValueType(d);
        p    = end;
    }
    if(n == 0)
        return;

    setValue(v, transposed);
}

template <class ValueTypeT>
void TransformationMatrix<ValueTypeT>::setRotate(const QuaternionType &q)
{
    q.getValuesOnly(*this);
}

template <class ValueTypeT>
void TransformationMatrix<ValueTypeT>::setTransform(const QuaternionType &r)
{
    r.getValue(*this);
}

template <class ValueTypeT>
void TransformationMatrix<ValueTypeT>::setTransform(const VectorType3f   &t,
                                                    const QuaternionType &r)
{
    r.getValue(*this);
    setTranslate(t);
}

template <class ValueTypeT>
void TransformationMatrix<ValueTypeT>::setTransform(const VectorType3f   &t,
                                                    const QuaternionType &r,
                                                    const VectorType3f   &s)
{
    r.getValue(*this);
    for(UInt32 c = 0; c < 3; ++c)
        for(UInt32 k = 0; k < 3; ++k)
            _matrix[c][k] *= s[c];
    setTranslate(t);
}

template <class ValueTypeT>
void TransformationMatrix<ValueTypeT>::setTransform(const VectorType3f   &t,
                                                    const QuaternionType &r,
                                                    const VectorType3f   &s,
                                                    const QuaternionType &so)
{
    setTransform(t, r, s, so, VectorType3f());
}

template <class ValueTypeT>
void TransformationMatrix<ValueTypeT>::setTransform(const VectorType3f   &t,
                                                    const QuaternionType &r,
                                                    const VectorType3f   &s,
                                                    const QuaternionType &so,
                                                    const VectorType3f   &c)
{
    typedef ValueTypeT T;

    // A = R * SO * S * SO^T.
    Mat3<T> rm = mat3FromQuat(r);
    Mat3<T> om = mat3FromQuat(so);
    Mat3<T> os;
    for(UInt32 row = 0; row < 3; ++row)
        for(UInt32 col = 0; col < 3; ++col)
            os(row, col) = om(row, col) * s[col];
    Mat3<T> a = mul(rm, mul(os, transpose3(om)));

    setIdentity();
    for(UInt32 col = 0; col < 3; ++col)
        for(UInt32 row = 0; row < 3; ++row)
            _matrix[col][row] = a(row, col);

    // Translation t + c - A c, so that the centre is the fixed point.
    for(UInt32 row = 0; row < 3; ++row)
        _matrix[3][row] = t[row] + c[row] -
                          (a(row, 0) * c[0] + a(row, 1) * c[1] +
                           a(row, 2) * c[2]);
}

template <class ValueTypeT>
void TransformationMatrix<ValueTypeT>::getTransform(VectorType3f   &t,
                                                    QuaternionType &r,
                                                    VectorType3f   &s,
                                                    QuaternionType &so) const
{
    getTransform(t, r, s, so, VectorType3f());
}

template <class ValueTypeT>
void TransformationMatrix<ValueTypeT>::getTransform(
    VectorType3f &t, QuaternionType &r, VectorType3f &s, QuaternionType &so,
    const VectorType3f &c) const
{
    typedef ValueTypeT T;

    Mat3<T> a;
    for(UInt32 col = 0; col < 3; ++col)
        for(UInt32 row = 0; row < 3; ++row)
            a(row, col) = _matrix[col][row];

    // t = column 3 - c + A c (undoes the centre of setTransform).
    for(UInt32 row = 0; row < 3; ++row)
        t[row] = _matrix[3][row] - c[row] +
                 (a(row, 0) * c[0] + a(row, 1) * c[1] + a(row, 2) * c[2]);

    // A mirroring matrix is decomposed as -A, with the scale negated.
    T flip = a.det() < T(0) ? T(-1) : T(1);
    if(flip < T(0))
        for(UInt32 col = 0; col < 3; ++col)
            for(UInt32 row = 0; row < 3; ++row)
                a(row, col) = -a(row, col);

    // Polar decomposition A = Q P by the iteration Q := (Q + Q^-T) / 2,
    // which converges to the nearest rotation for a regular A.
    Mat3<T> q = a;
    for(UInt32 i = 0; i < 100; ++i)
    {
        Mat3<T> qit;
        if(!q.inverseTransposed(qit))
            break;
        Mat3<T> next;
        T       diff = 0;
        for(UInt32 col = 0; col < 3; ++col)
            for(UInt32 row = 0; row < 3; ++row)
            {
                next(row, col) = T(0.5) * (q(row, col) + qit(row, col));
                diff += std::fabs(next(row, col) - q(row, col));
            }
        q = next;
        if(diff < T(1e-7))
            break;
    }

    // P = Q^T A is symmetric: P = U diag(e) U^T gives scale and orientation.
    Mat3<T> p = mul(transpose3(q), a);
    for(UInt32 row = 0; row < 3; ++row)
        for(UInt32 col = row + 1; col < 3; ++col)
        {
            T m       = T(0.5) * (p(row, col) + p(col, row));
            p(row, col) = m;
            p(col, row) = m;
        }

    Mat3<T> u;
    T       e[3];
    symmetricEigen(p, u, e);
    if(u.det() < T(0))
        for(UInt32 row = 0; row < 3; ++row)
            u(row, 2) = -u(row, 2);

    s.setValues(e[0] * flip, e[1] * flip, e[2] * flip);
    quatFromMat3(q, r);
    // OpenSG hands out the inverse (transposed) scale orientation, so
    // setTransform(t, r, s, so) does not rebuild a matrix with a non-uniform
    // scale; callers of both rely on that pairing.
    quatFromMat3(transpose3(u), so);
}

template <class ValueTypeT>
void TransformationMatrix<ValueTypeT>::multFull(const PointType3f &src,
                                                PointType3f       &dst) const
{
    const ValueType x = src[0], y = src[1], z = src[2];
    ValueType       out[3];
    for(UInt32 r = 0; r < 3; ++r)
        out[r] = _matrix[0][r] * x + _matrix[1][r] * y + _matrix[2][r] * z +
                 _matrix[3][r];
    ValueType w = _matrix[0][3] * x + _matrix[1][3] * y + _matrix[2][3] * z +
                  _matrix[3][3];

    if(w == ValueType(0))
    {
        FWARNING(("TransformationMatrix<>::multFull(Pnt3, Pnt3): w == 0.0\n"));
        dst.setValues(out[0], out[1], out[2]);
        return;
    }
    ValueType inv = ValueType(1) / w;
    dst.setValues(out[0] * inv, out[1] * inv, out[2] * inv);
}

template <class ValueTypeT>
void TransformationMatrix<ValueTypeT>::multFullMatrixPnt(const PointType3f &src,
                                                         PointType3f       &dst) const
{
    PointType h;
    mult(PointType(src[0], src[1], src[2], ValueType(1)), h);
    if(h[3] == ValueType(0))
    {
        dst.setValues(ValueType(0), ValueType(0), ValueType(0));
        return;
    }
    ValueType inv = ValueType(1) / h[3];
    dst.setValues(h[0] * inv, h[1] * inv, h[2] * inv);
}

template <class ValueTypeT>
void TransformationMatrix<ValueTypeT>::multFull(const VectorType3f &src,
                                                VectorType3f       &dst) const
{
    const ValueType x = src[0], y = src[1], z = src[2];
    ValueType       out[3];
    for(UInt32 r = 0; r < 3; ++r)
        out[r] = _matrix[0][r] * x + _matrix[1][r] * y + _matrix[2][r] * z;
    ValueType w = _matrix[0][3] * x + _matrix[1][3] * y + _matrix[2][3] * z;

    if(w == ValueType(0))
    {
        FWARNING(("TransformationMatrix<>::multFull(Vec3, Vec3): w == 0.0\n"));
        dst.setValues(out[0], out[1], out[2]);
        return;
    }
    ValueType inv = ValueType(1) / w;
    dst.setValues(out[0] * inv, out[1] * inv, out[2] * inv);
}

// The determinant and the inverse work on a(i, j) = m[i][j], which is the
// transpose of the matrix. det(A^T) = det(A), and inverting A^T gives the
// transposed inverse, whose element (i, j) is exactly result[i][j]. Both use
// the 2x2 minors of the first two and the last two "rows" of a.
namespace
{

template <class T>
struct Minors
{
    T s[6], c[6];

    explicit Minors(const Vector<T, 4> *m)
    {
        s[0] = m[0][0] * m[1][1] - m[1][0] * m[0][1];
        s[1] = m[0][0] * m[1][2] - m[1][0] * m[0][2];
        s[2] = m[0][0] * m[1][3] - m[1][0] * m[0][3];
        s[3] = m[0][1] * m[1][2] - m[1][1] * m[0][2];
        s[4] = m[0][1] * m[1][3] - m[1][1] * m[0][3];
        s[5] = m[0][2] * m[1][3] - m[1][2] * m[0][3];
        c[5] = m[2][2] * m[3][3] - m[3][2] * m[2][3];
        c[4] = m[2][1] * m[3][3] - m[3][1] * m[2][3];
        c[3] = m[2][1] * m[3][2] - m[3][1] * m[2][2];
        c[2] = m[2][0] * m[3][3] - m[3][0] * m[2][3];
        c[1] = m[2][0] * m[3][2] - m[3][0] * m[2][2];
        c[0] = m[2][0] * m[3][1] - m[3][0] * m[2][1];
    }

    T det(void) const
    {
        return s[0] * c[5] - s[1] * c[4] + s[2] * c[3] + s[3] * c[2] -
               s[4] * c[1] + s[5] * c[0];
    }
};

} // namespace

template <class ValueTypeT>
ValueTypeT TransformationMatrix<ValueTypeT>::det(void) const
{
    return Minors<ValueTypeT>(_matrix).det();
}

template <class ValueTypeT>
bool TransformationMatrix<ValueTypeT>::inverse(TransformationMatrix &result) const
{
    const VectorType       *a = _matrix;
    Minors<ValueTypeT>      mn(a);
    const ValueType        *s = mn.s;
    const ValueType        *c = mn.c;

    ValueType d = mn.det();
    if(std::fabs(double(d)) < DetEps)
    {
        result.setIdentity();
        return false;
    }
    ValueType inv = ValueType(1) / d;

    ValueType b[4][4];
    b[0][0] = ( a[1][1] * c[5] - a[1][2] * c[4] + a[1][3] * c[3]) * inv;
    b[0][1] = (-a[0][1] * c[5] + a[0][2] * c[4] - a[0][3] * c[3]) * inv;
    b[0][2] = ( a[3][1] * s[5] - a[3][2] * s[4] + a[3][3] * s[3]) * inv;
    b[0][3] = (-a[2][1] * s[5] + a[2][2] * s[4] - a[2][3] * s[3]) * inv;

    b[1][0] = (-a[1][0] * c[5] + a[1][2] * c[2] - a[1][3] * c[1]) * inv;
    b[1][1] = ( a[0][0] * c[5] - a[0][2] * c[2] + a[0][3] * c[1]) * inv;
    b[1][2] = (-a[3][0] * s[5] + a[3][2] * s[2] - a[3][3] * s[1]) * inv;
    b[1][3] = ( a[2][0] * s[5] - a[2][2] * s[2] + a[2][3] * s[1]) * inv;

    b[2][0] = ( a[1][0] * c[4] - a[1][1] * c[2] + a[1][3] * c[0]) * inv;
    b[2][1] = (-a[0][0] * c[4] + a[0][1] * c[2] - a[0][3] * c[0]) * inv;
    b[2][2] = ( a[3][0] * s[4] - a[3][1] * s[2] + a[3][3] * s[0]) * inv;
    b[2][3] = (-a[2][0] * s[4] + a[2][1] * s[2] - a[2][3] * s[0]) * inv;

    b[3][0] = (-a[1][0] * c[3] + a[1][1] * c[1] - a[1][2] * c[0]) * inv;
    b[3][1] = ( a[0][0] * c[3] - a[0][1] * c[1] + a[0][2] * c[0]) * inv;
    b[3][2] = (-a[3][0] * s[3] + a[3][1] * s[1] - a[3][2] * s[0]) * inv;
    b[3][3] = ( a[2][0] * s[3] - a[2][1] * s[1] + a[2][2] * s[0]) * inv;

    // Written last, so that inverse(*this) is safe.
    for(UInt32 i = 0; i < 4; ++i)
        for(UInt32 j = 0; j < 4; ++j)
            result._matrix[i][j] = b[i][j];
    return true;
}

template <class ValueTypeT>
bool TransformationMatrix<ValueTypeT>::inverse3(TransformationMatrix &result) const
{
    Mat3<ValueTypeT> a, it;
    for(UInt32 col = 0; col < 3; ++col)
        for(UInt32 row = 0; row < 3; ++row)
            a(row, col) = _matrix[col][row];

    bool ok = a.inverseTransposed(it);
    result.setIdentity();
    if(!ok)
        return false;

    for(UInt32 col = 0; col < 3; ++col)
        for(UInt32 row = 0; row < 3; ++row)
            result._matrix[col][row] = it(col, row);
    return true;
}

template <class ValueTypeT>
ValueTypeT TransformationMatrix<ValueTypeT>::norm1(void) const
{
    ValueType best = 0;
    for(UInt32 c = 0; c < 4; ++c)
    {
        ValueType s = 0;
        for(UInt32 r = 0; r < 4; ++r)
            s += std::fabs(_matrix[c][r]);
        if(s > best)
            best = s;
    }
    return best;
}

template <class ValueTypeT>
ValueTypeT TransformationMatrix<ValueTypeT>::norm2(void) const
{
    ValueType s = 0;
    for(UInt32 c = 0; c < 4; ++c)
        for(UInt32 r = 0; r < 4; ++r)
            s += _matrix[c][r] * _matrix[c][r];
    return std::sqrt(s);
}

template <class ValueTypeT>
ValueTypeT TransformationMatrix<ValueTypeT>::normInfinity(void) const
{
    ValueType best = 0;
    for(UInt32 r = 0; r < 4; ++r)
    {
        ValueType s = 0;
        for(UInt32 c = 0; c < 4; ++c)
            s += std::fabs(_matrix[c][r]);
        if(s > best)
            best = s;
    }
    return best;
}

template <class ValueTypeT>
std::ostream &operator<<(std::ostream &os,
                         const TransformationMatrix<ValueTypeT> &m)
{
    std::ios_base::fmtflags flags = os.flags();
    std::streamsize         prec  = os.precision();

    os << std::fixed << std::setprecision(3);
    for(UInt32 r = 0; r < 4; ++r)
    {
        for(UInt32 c = 0; c < 4; ++c)
            os << std::setw(8) << m[c][r] << " ";
        os << "\n";
    }

    os.flags(flags);
    os.precision(prec);
    return os;
}

template class TransformationMatrix<Real32>;
template class TransformationMatrix<Real64>;
template std::ostream &operator<<(std::ostream &, const Matrix4f &);
template std::ostream &operator<<(std::ostream &, const Matrix4d &);

OSG_END_NAMESPACE
