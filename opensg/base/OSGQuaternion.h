/// Rotations as unit quaternions, stored x, y, z, w.
#ifndef _OSGQUATERNION_H_
#define _OSGQUATERNION_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGVector.h>

#include <ostream>

OSG_BEGIN_NAMESPACE

template <class ValueTypeT>
class TransformationMatrix;

/// Composition follows matrices: a.mult(b) is a := a * b, which applies b
/// first, so (a * b).getValue(m) equals the matrix product of a's and b's.
template <class ValueTypeT>
class QuaternionBase
{
  public:
    typedef ValueTypeT                        ValueType;
    typedef Vector<ValueTypeT, 3>             VectorType;
    typedef TransformationMatrix<ValueTypeT>  MatrixType;

    static const QuaternionBase &identity(void);

    QuaternionBase(void) : _quat{0, 0, 0, 1} {}
    QuaternionBase(ValueType x, ValueType y, ValueType z, ValueType w)
        : _quat{x, y, z, w}
    {
    }
    explicit QuaternionBase(const MatrixType &matrix);
    /// Rotation by angle (radians) about axis.
    QuaternionBase(const VectorType &axis, ValueType angle);
    /// The shortest rotation that turns from into to.
    QuaternionBase(const VectorType &from, const VectorType &to);

    void setIdentity(void);

    void setValueAsAxisRad(ValueType x, ValueType y, ValueType z, ValueType w);
    void setValueAsAxisRad(const ValueType *axisAngle);
    void setValueAsAxisRad(const VectorType &axis, ValueType angle);
    /// "x y z angle", blanks or commas between the numbers.
    void setValueAsAxisRad(const Char8 *str);
    void setValueAsAxisDeg(ValueType x, ValueType y, ValueType z, ValueType w);
    void setValueAsAxisDeg(const ValueType *axisAngle);
    void setValueAsAxisDeg(const VectorType &axis, ValueType angle);
    void setValueAsAxisDeg(const Char8 *str);

    void setValueAsQuat(ValueType x, ValueType y, ValueType z, ValueType w);
    void setValueAsQuat(const ValueType *quat);

    /// From the rotation in the upper 3x3 of an orthonormal matrix.
    void setValue(const MatrixType &matrix);
    void setValue(const VectorType &from, const VectorType &to);
    /// From Euler angles in radians: the rotation by alpha about x, then by
    /// beta about y, then by gamma about z (Rz * Ry * Rx).
    void setValue(ValueType alpha, ValueType beta, ValueType gamma);

    const ValueType *getValues(void) const { return _quat; }

    void getValueAsAxisRad(ValueType &x, ValueType &y, ValueType &z,
                           ValueType &w) const;
    void getValueAsAxisRad(VectorType &axis, ValueType &angle) const;
    void getValueAsAxisDeg(ValueType &x, ValueType &y, ValueType &z,
                           ValueType &w) const;
    void getValueAsAxisDeg(VectorType &axis, ValueType &angle) const;
    void getValueAsQuat(ValueType &x, ValueType &y, ValueType &z,
                        ValueType &w) const;

    /// The full rotation matrix (no translation, m[3][3] = 1).
    void getValue(MatrixType &matrix) const;
    /// Writes only the upper 3x3; the rest of the matrix stays.
    void getValuesOnly(MatrixType &matrix) const;

    ValueType x(void) const { return _quat[0]; }
    ValueType y(void) const { return _quat[1]; }
    ValueType z(void) const { return _quat[2]; }
    ValueType w(void) const { return _quat[3]; }

    ValueType length(void) const;
    void      normalize(void);

    /// Conjugate scaled by the inverse squared length.
    void           invert(void);
    QuaternionBase inverse(void) const;

    void multVec(const VectorType &src, VectorType &dst) const;
    void transform(const VectorType &src, VectorType &dst) const
    {
        multVec(src, dst);
    }

    /// Keeps the axis and scales the angle.
    void scaleAngle(ValueType factor);

    static QuaternionBase slerp(const QuaternionBase &a,
                                const QuaternionBase &b, ValueType t);

    /// this := this * other.
    void mult(const QuaternionBase &other);
    /// this := other * this.
    void multLeft(const QuaternionBase &other);

    bool equals(const QuaternionBase &q, ValueType tolerance) const;

    ValueType       &operator[](UInt32 i) { return _quat[i]; }
    const ValueType &operator[](UInt32 i) const { return _quat[i]; }

    QuaternionBase &operator*=(const QuaternionBase &other)
    {
        mult(other);
        return *this;
    }

    bool operator==(const QuaternionBase &q) const
    {
        return equals(q, ValueType(Eps));
    }
    bool operator!=(const QuaternionBase &q) const { return !(*this == q); }

  private:
    ValueType _quat[4];
};

template <class ValueTypeT>
inline QuaternionBase<ValueTypeT> operator*(const QuaternionBase<ValueTypeT> &a,
                                            const QuaternionBase<ValueTypeT> &b)
{
    QuaternionBase<ValueTypeT> r(a);
    r.mult(b);
    return r;
}

/// "x, y, z, w" (the raw quaternion).
template <class ValueTypeT>
std::ostream &operator<<(std::ostream &os, const QuaternionBase<ValueTypeT> &q)
{
    return os << q[0] << ", " << q[1] << ", " << q[2] << ", " << q[3];
}

typedef QuaternionBase<Real32> Quaternion;
typedef QuaternionBase<Real64> Quaterniond;

extern template class QuaternionBase<Real32>;
extern template class QuaternionBase<Real64>;

OSG_END_NAMESPACE

#include <OpenSG/OSGMatrix.h>

#endif
