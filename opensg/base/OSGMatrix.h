/// 4x4 transformation matrix for column vectors, stored as four columns.
#ifndef _OSGMATRIX_H_
#define _OSGMATRIX_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGQuaternion.h>
#include <OpenSG/OSGVector.h>

#include <ostream>

OSG_BEGIN_NAMESPACE

/// m[c] is column c and m[c][r] the element in column c, row r; the
/// translation is m[3][0..2]. getValues() is column-major (OpenGL order),
/// while the 16-value constructor and setValue read row by row. a.mult(b)
/// is a := a * b, so b applies to points first.
template <class ValueTypeT>
class TransformationMatrix
{
  public:
    typedef ValueTypeT                 ValueType;
    typedef Vector<ValueTypeT, 4>      VectorType;
    typedef Vector<ValueTypeT, 3>      VectorType3f;
    typedef Point<ValueTypeT, 4>       PointType;
    typedef Point<ValueTypeT, 3>       PointType3f;
    typedef QuaternionBase<ValueTypeT> QuaternionType;

    static const TransformationMatrix &identity(void);

    TransformationMatrix(void) { setIdentity(); }

    /// Columns 0-2 (x, y, z); everything else, the bottom row and m[3][3]
    /// included, is 0.
    TransformationMatrix(const VectorType3f &c0, const VectorType3f &c1,
                         const VectorType3f &c2)
    {
        setValue(c0, c1, c2);
    }

    /// Columns 0-3 (x, y, z); the bottom row, m[3][3] included, is 0.
    TransformationMatrix(const VectorType3f &c0, const VectorType3f &c1,
                         const VectorType3f &c2, const VectorType3f &c3)
    {
        setValue(c0, c1, c2, c3);
    }

    /// Row-major reading order: the first four values are row 0.
    TransformationMatrix(ValueType a00, ValueType a10, ValueType a20,
                         ValueType a30, ValueType a01, ValueType a11,
                         ValueType a21, ValueType a31, ValueType a02,
                         ValueType a12, ValueType a22, ValueType a32,
                         ValueType a03, ValueType a13, ValueType a23,
                         ValueType a33)
    {
        setValue(a00, a10, a20, a30, a01, a11, a21, a31, a02, a12, a22, a32,
                 a03, a13, a23, a33);
    }

    // --- setting -----------------------------------------------------------

    void setIdentity(void)
    {
        for(UInt32 c = 0; c < 4; ++c)
            for(UInt32 r = 0; r < 4; ++r)
                _matrix[c][r] = ValueType(c == r ? 1 : 0);
    }

    void setValue(const TransformationMatrix &m) { *this = m; }

    /// Sets x, y, z of columns 0-2 and leaves the other elements.
    void setValue(const VectorType3f &c0, const VectorType3f &c1,
                  const VectorType3f &c2)
    {
        _matrix[0].setValue(c0);
        _matrix[1].setValue(c1);
        _matrix[2].setValue(c2);
    }

    /// Sets x, y, z of columns 0-3 and leaves the bottom row.
    void setValue(const VectorType3f &c0, const VectorType3f &c1,
                  const VectorType3f &c2, const VectorType3f &c3)
    {
        setValue(c0, c1, c2);
        _matrix[3].setValue(c3);
    }

    /// Row-major reading order: (a00, a10, a20, a30) is row 0, and a30 is
    /// the x translation.
    void setValue(ValueType a00, ValueType a10, ValueType a20, ValueType a30,
                  ValueType a01, ValueType a11, ValueType a21, ValueType a31,
                  ValueType a02, ValueType a12, ValueType a22, ValueType a32,
                  ValueType a03, ValueType a13, ValueType a23, ValueType a33)
    {
        _matrix[0].setValues(a00, a01, a02, a03);
        _matrix[1].setValues(a10, a11, a12, a13);
        _matrix[2].setValues(a20, a21, a22, a23);
        _matrix[3].setValues(a30, a31, a32, a33);
    }

    /// Column-major order: the first four values are column 0.
    void setValueTransposed(ValueType a00, ValueType a01, ValueType a02,
                            ValueType a03, ValueType a10, ValueType a11,
                            ValueType a12, ValueType a13, ValueType a20,
                            ValueType a21, ValueType a22, ValueType a23,
                            ValueType a30, ValueType a31, ValueType a32,
                            ValueType a33)
    {
        _matrix[0].setValues(a00, a01, a02, a03);
        _matrix[1].setValues(a10, a11, a12, a13);
        _matrix[2].setValues(a20, a21, a22, a23);
        _matrix[3].setValues(a30, a31, a32, a33);
    }

    /// transposed = true: 16 values as consecutive columns (the order of
    /// getValues()); false: as consecutive rows.
    void setValue(const ValueType *pMat, bool transposed = true)
    {
        for(UInt32 c = 0; c < 4; ++c)
            for(UInt32 r = 0; r < 4; ++r)
                _matrix[c][r] = transposed ? pMat[c * 4 + r] : pMat[r * 4 + c];
    }

    /// 16 numbers separated by blanks, tabs, newlines or commas, ordered as
    /// for setValue(const ValueType *, transposed). Missing numbers are 0; an
    /// empty or NULL string gives the identity.
    void setValue(const Char8 *str, bool transposed = true);

    ValueType       *getValues(void) { return _matrix[0].getValues(); }
    const ValueType *getValues(void) const { return _matrix[0].getValues(); }

    /// Overwrites only the diagonal elements 0-2.
    void setScale(ValueType s) { setScale(s, s, s); }
    void setScale(ValueType sx, ValueType sy, ValueType sz)
    {
        _matrix[0][0] = sx;
        _matrix[1][1] = sy;
        _matrix[2][2] = sz;
    }
    void setScale(const VectorType3f &s) { setScale(s[0], s[1], s[2]); }

    /// Overwrites only rows 0-2 of column 3.
    void setTranslate(ValueType tx, ValueType ty, ValueType tz)
    {
        _matrix[3][0] = tx;
        _matrix[3][1] = ty;
        _matrix[3][2] = tz;
    }
    void setTranslate(const VectorType3f &t) { setTranslate(t[0], t[1], t[2]); }
    void setTranslate(const PointType3f &t) { setTranslate(t[0], t[1], t[2]); }

    /// Sets only the 3x3 rotation part.
    void setRotate(const QuaternionType &q);

    /// Identity plus translation.
    void setTransform(const VectorType3f &t)
    {
        setIdentity();
        setTranslate(t);
    }
    void setTransform(const QuaternionType &r);
    void setTransform(const VectorType3f &t, const QuaternionType &r);
    void setTransform(const VectorType3f &t, const QuaternionType &r,
                      const VectorType3f &s);
    void setTransform(const VectorType3f &t, const QuaternionType &r,
                      const VectorType3f &s, const QuaternionType &so);
    /// T(t) T(c) R(r) R(so) S(s) R(so)^-1 T(-c).
    void setTransform(const VectorType3f &t, const QuaternionType &r,
                      const VectorType3f &s, const QuaternionType &so,
                      const VectorType3f &c);

    /// Inverse of setTransform by polar decomposition of the 3x3 part; a
    /// negative determinant negates the scale. Projective parts are lost.
    void getTransform(VectorType3f &t, QuaternionType &r, VectorType3f &s,
                      QuaternionType &so) const;
    void getTransform(VectorType3f &t, QuaternionType &r, VectorType3f &s,
                      QuaternionType &so, const VectorType3f &c) const;

    // --- access ------------------------------------------------------------

    VectorType       &operator[](UInt32 column) { return _matrix[column]; }
    const VectorType &operator[](UInt32 column) const { return _matrix[column]; }

    // --- transforming points and vectors -----------------------------------

    /// Affine M * (p, 1); no division by w.
    void mult(const PointType3f &src, PointType3f &dst) const
    {
        const ValueType x = src[0], y = src[1], z = src[2];
        for(UInt32 r = 0; r < 3; ++r)
            dst[r] = _matrix[0][r] * x + _matrix[1][r] * y +
                     _matrix[2][r] * z + _matrix[3][r];
    }

    /// M * (v, 0): the 3x3 part only.
    void mult(const VectorType3f &src, VectorType3f &dst) const
    {
        const ValueType x = src[0], y = src[1], z = src[2];
        for(UInt32 r = 0; r < 3; ++r)
            dst[r] = _matrix[0][r] * x + _matrix[1][r] * y + _matrix[2][r] * z;
    }

    /// Full 4x4 product.
    void mult(const PointType &src, PointType &dst) const
    {
        const ValueType x = src[0], y = src[1], z = src[2], w = src[3];
        for(UInt32 r = 0; r < 4; ++r)
            dst[r] = _matrix[0][r] * x + _matrix[1][r] * y +
                     _matrix[2][r] * z + _matrix[3][r] * w;
    }

    /// x, y, z use the 3x3 part only (no translation, input w ignored); the
    /// output w is the full bottom row times the input, m[3][3] * w included.
    void mult(const VectorType &src, VectorType &dst) const
    {
        const ValueType x = src[0], y = src[1], z = src[2], w = src[3];
        for(UInt32 r = 0; r < 3; ++r)
            dst[r] = _matrix[0][r] * x + _matrix[1][r] * y + _matrix[2][r] * z;
        dst[3] = _matrix[0][3] * x + _matrix[1][3] * y + _matrix[2][3] * z +
                 _matrix[3][3] * w;
    }

    /// M * (p, 1) divided by the resulting w; w == 0 logs a warning and
    /// leaves the undivided value.
    void multFull(const PointType3f &src, PointType3f &dst) const;
    void multFull(const VectorType3f &src, VectorType3f &dst) const;

    void mult3x3(const PointType3f &src, PointType3f &dst) const
    {
        const ValueType x = src[0], y = src[1], z = src[2];
        for(UInt32 r = 0; r < 3; ++r)
            dst[r] = _matrix[0][r] * x + _matrix[1][r] * y + _matrix[2][r] * z;
    }
    void mult3x3(const VectorType3f &src, VectorType3f &dst) const
    {
        mult(src, dst);
    }

    /// Row-vector products (p, 1)^T * M and (v, 0)^T * M.
    void multLeft(const PointType3f &src, PointType3f &dst) const
    {
        const ValueType x = src[0], y = src[1], z = src[2];
        for(UInt32 c = 0; c < 3; ++c)
            dst[c] = x * _matrix[c][0] + y * _matrix[c][1] +
                     z * _matrix[c][2] + _matrix[c][3];
    }
    void multLeft(const VectorType3f &src, VectorType3f &dst) const
    {
        const ValueType x = src[0], y = src[1], z = src[2];
        for(UInt32 c = 0; c < 3; ++c)
            dst[c] = x * _matrix[c][0] + y * _matrix[c][1] + z * _matrix[c][2];
    }

    // Older names of the same products.
    void multMatrixPnt(const PointType3f &src, PointType3f &dst) const
    {
        mult(src, dst);
    }
    void multMatrixPnt(PointType3f &pnt) const { mult(PointType3f(pnt), pnt); }
    void multMatrixVec(const VectorType3f &src, VectorType3f &dst) const
    {
        mult(src, dst);
    }
    void multMatrixVec(VectorType3f &vec) const { mult(VectorType3f(vec), vec); }
    /// M * (p, 1) divided by the resulting w; w == 0 gives (0, 0, 0)
    /// without a message.
    void multFullMatrixPnt(const PointType3f &src, PointType3f &dst) const;
    void multFullMatrixPnt(PointType3f &pnt) const
    {
        multFullMatrixPnt(PointType3f(pnt), pnt);
    }
    void multPntMatrix(const PointType3f &src, PointType3f &dst) const
    {
        multLeft(src, dst);
    }
    void multPntMatrix(PointType3f &pnt) const { multLeft(PointType3f(pnt), pnt); }
    void multVecMatrix(const VectorType3f &src, VectorType3f &dst) const
    {
        multLeft(src, dst);
    }
    void multVecMatrix(VectorType3f &vec) const { multLeft(VectorType3f(vec), vec); }

    PointType3f operator*(const PointType3f &p) const
    {
        PointType3f r;
        mult(p, r);
        return r;
    }
    VectorType3f operator*(const VectorType3f &v) const
    {
        VectorType3f r;
        mult(v, r);
        return r;
    }

    // --- matrix products -----------------------------------------------------

    /// this := this * m.
    void mult(const TransformationMatrix &m)
    {
        TransformationMatrix a(*this);
        product(a, m);
    }

    /// this := m * this.
    void multLeft(const TransformationMatrix &m)
    {
        TransformationMatrix b(*this);
        product(m, b);
    }

    // --- inverse, determinant, transpose ------------------------------------

    ValueType det3(void) const
    {
        const VectorType *m = _matrix;
        return m[0][0] * (m[1][1] * m[2][2] - m[2][1] * m[1][2]) -
               m[1][0] * (m[0][1] * m[2][2] - m[2][1] * m[0][2]) +
               m[2][0] * (m[0][1] * m[1][2] - m[1][1] * m[0][2]);
    }

    ValueType det(void) const;

    /// |det| < 1e-30: result identity, false.
    bool inverse(TransformationMatrix &result) const;
    bool invert(void) { return inverse(*this); }
    bool invertFrom(const TransformationMatrix &m) { return m.inverse(*this); }

    /// On the 3x3 part; the result's other elements are the identity's.
    /// |det3| < 1e-30: result identity, false.
    bool inverse3(TransformationMatrix &result) const;
    bool invert3(void) { return inverse3(*this); }
    bool invertFrom3(const TransformationMatrix &m) { return m.inverse3(*this); }

    TransformationMatrix transposed(void) const
    {
        TransformationMatrix t;
        for(UInt32 c = 0; c < 4; ++c)
            for(UInt32 r = 0; r < 4; ++r)
                t._matrix[c][r] = _matrix[r][c];
        return t;
    }
    bool transpose(void)
    {
        *this = transposed();
        return true;
    }
    bool transposeFrom(const TransformationMatrix &m)
    {
        *this = m.transposed();
        return true;
    }

    // --- element-wise operations and norms ----------------------------------

    void add(const TransformationMatrix &m)
    {
        for(UInt32 c = 0; c < 4; ++c)
            _matrix[c] += m._matrix[c];
    }
    void scale(ValueType s)
    {
        for(UInt32 c = 0; c < 4; ++c)
            _matrix[c] *= s;
    }
    void addScaled(const TransformationMatrix &m, ValueType s)
    {
        for(UInt32 c = 0; c < 4; ++c)
            _matrix[c] += m._matrix[c] * s;
    }
    void negate(void)
    {
        for(UInt32 c = 0; c < 4; ++c)
            _matrix[c] = -_matrix[c];
    }

    /// Largest absolute column sum.
    ValueType norm1(void) const;
    /// Frobenius norm.
    ValueType norm2(void) const;
    /// Largest absolute row sum.
    ValueType normInfinity(void) const;

    // --- comparison ------------------------------------------------------------

    bool equals(const TransformationMatrix &m, ValueType tolerance) const
    {
        for(UInt32 c = 0; c < 4; ++c)
            if(!_matrix[c].equals(m._matrix[c], tolerance))
                return false;
        return true;
    }

    /// Not exact: elements may differ by up to Eps.
    bool operator==(const TransformationMatrix &m) const
    {
        return equals(m, ValueType(Eps));
    }
    bool operator!=(const TransformationMatrix &m) const { return !(*this == m); }

  private:
    /// this := a * b; element (c, r) = sum_k a[k][r] * b[c][k].
    void product(const TransformationMatrix &a, const TransformationMatrix &b)
    {
        for(UInt32 c = 0; c < 4; ++c)
            for(UInt32 r = 0; r < 4; ++r)
                _matrix[c][r] = a._matrix[0][r] * b._matrix[c][0] +
                                a._matrix[1][r] * b._matrix[c][1] +
                                a._matrix[2][r] * b._matrix[c][2] +
                                a._matrix[3][r] * b._matrix[c][3];
    }

    VectorType _matrix[4];
};

/// Four lines, one per row; each entry fixed-point, 3 decimals, width 8,
/// followed by a blank.
template <class ValueTypeT>
std::ostream &operator<<(std::ostream &os,
                         const TransformationMatrix<ValueTypeT> &m);

typedef TransformationMatrix<Real32> Matrix;
typedef TransformationMatrix<Real32> Matrix4f;
typedef TransformationMatrix<Real64> Matrix4d;

extern template class TransformationMatrix<Real32>;
extern template class TransformationMatrix<Real64>;
extern template std::ostream &operator<<(std::ostream &, const Matrix4f &);
extern template std::ostream &operator<<(std::ostream &, const Matrix4d &);

OSG_END_NAMESPACE

#endif
