/// Typed functors: small callables that actions store per core type, and the
/// osgTyped...Functor... factories that build them.
///
/// A functor is a value: it is copied into the per-type tables of every
/// action instance and built anew for every drawable a render action queues,
/// so it keeps its target in a fixed inline buffer (no heap for member
/// function pointers, function pointers or an object plus a member function)
/// and copies with a memcpy. Larger callables still work; they live on the
/// heap and are copied deeply.
///
/// Naming follows the factories' conventions: the first call argument is
/// passed as
///   Ptr     - a raw pointer  (PtrCallArg<T>     : T *)
///   Ref     - a reference    (RefCallArg<T>     : T &)
///   CPtr    - a container pointer by value      (CPtrCallArg<P>    : P)
///   CPtrRef - a container pointer by reference  (CPtrRefCallArg<P> : P &)
/// "Method" factories call a member function on that first argument (the
/// "Base" forms reach the object through the container pointer and accept
/// a member of a base class); "ObjPtr" factories bind one object and pass
/// the call arguments on to its member function.
#ifndef _OSGTYPEDFUNCTORS_H_
#define _OSGTYPEDFUNCTORS_H_

#include <OpenSG/OSGBaseTypes.h>

#include <cstddef>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

OSG_BEGIN_NAMESPACE

// --- call argument descriptors ---------------------------------------------

template <class ArgT>
struct PtrCallArg
{
    typedef ArgT *ArgType;
};

template <class ArgT>
struct RefCallArg
{
    typedef ArgT &ArgType;
};

template <class ArgT>
struct CPtrCallArg
{
    typedef ArgT ArgType;
};

template <class ArgT>
struct CPtrRefCallArg
{
    typedef ArgT &ArgType;
};

template <class ArgT>
struct ObjCallArg
{
    typedef ArgT ArgType;
};

/// The arguments after the first one.
template <class Arg1T>
struct ArgsCollector
{
    typedef Arg1T Arg1Type;
};

template <class Arg1T, class Arg2T>
struct ArgsCollector2
{
    typedef Arg1T Arg1Type;
    typedef Arg2T Arg2Type;
};

// --- type-erased storage ------------------------------------------------------

namespace FunctorDetail
{

template <class SigT>
class SmallFunction;

/// A copyable callable with room for three pointers in place.
template <class RetT, class... ArgTs>
class SmallFunction<RetT(ArgTs...)>
{
  public:
    static const size_t BufferSize = 3 * sizeof(void *);

    SmallFunction(void) : _ops(NULL) {}

    template <class CallableT>
    explicit SmallFunction(CallableT callable) : _ops(NULL)
    {
        assign(std::move(callable));
    }

    SmallFunction(const SmallFunction &source) : _ops(source._ops)
    {
        copyFrom(source);
    }

    SmallFunction &operator=(const SmallFunction &source)
    {
        if(this != &source)
        {
            destroy();
            _ops = source._ops;
            copyFrom(source);
        }
        return *this;
    }

    ~SmallFunction(void) { destroy(); }

    bool isValid(void) const { return _ops != NULL; }

    /// An empty functor returns a default value (Continue for actions).
    RetT operator()(ArgTs... args) const
    {
        if(_ops == NULL)
            return RetT();
        return _ops->invoke(_buffer, std::forward<ArgTs>(args)...);
    }

  private:
    struct Ops
    {
        RetT (*invoke)(const void *buffer, ArgTs... args);
        /// NULL: the buffer is copied bytewise and needs no destruction.
        void (*copy)(void *dst, const void *src);
        void (*destroy)(void *buffer);
    };

    template <class CallableT>
    struct Inline
    {
        static RetT invoke(const void *buffer, ArgTs... args)
        {
            return (*static_cast<CallableT *>(const_cast<void *>(buffer)))(
                std::forward<ArgTs>(args)...);
        }
        static const Ops ops;
    };

    template <class CallableT>
    struct Heap
    {
        static CallableT *get(const void *buffer)
        {
            return *static_cast<CallableT *const *>(buffer);
        }
        static RetT invoke(const void *buffer, ArgTs... args)
        {
            return (*get(buffer))(std::forward<ArgTs>(args)...);
        }
        static void copy(void *dst, const void *src)
        {
            *static_cast<CallableT **>(dst) = new CallableT(*get(src));
        }
        static void destroy(void *buffer) { delete get(buffer); }
        static const Ops ops;
    };

    template <class CallableT>
    void assign(CallableT &&callable)
    {
        typedef typename std::decay<CallableT>::type C;
        if constexpr(std::is_trivially_copyable<C>::value && sizeof(C) <= BufferSize &&
                     alignof(C) <= alignof(void *))
        {
            new(_buffer) C(std::forward<CallableT>(callable));
            _ops = &Inline<C>::ops;
        }
        else
        {
            *reinterpret_cast<C **>(_buffer) = new C(std::forward<CallableT>(callable));
            _ops = &Heap<C>::ops;
        }
    }

    void copyFrom(const SmallFunction &source)
    {
        if(_ops == NULL)
            return;
        if(_ops->copy == NULL)
            std::memcpy(_buffer, source._buffer, BufferSize);
        else
            _ops->copy(_buffer, source._buffer);
    }

    void destroy(void)
    {
        if(_ops != NULL && _ops->destroy != NULL)
            _ops->destroy(_buffer);
        _ops = NULL;
    }

    alignas(void *) unsigned char _buffer[BufferSize];
    const Ops *_ops;
};

template <class RetT, class... ArgTs>
template <class CallableT>
const typename SmallFunction<RetT(ArgTs...)>::Ops
    SmallFunction<RetT(ArgTs...)>::Inline<CallableT>::ops = {
        &SmallFunction<RetT(ArgTs...)>::Inline<CallableT>::invoke, NULL, NULL};

template <class RetT, class... ArgTs>
template <class CallableT>
const typename SmallFunction<RetT(ArgTs...)>::Ops
    SmallFunction<RetT(ArgTs...)>::Heap<CallableT>::ops = {
        &SmallFunction<RetT(ArgTs...)>::Heap<CallableT>::invoke,
        &SmallFunction<RetT(ArgTs...)>::Heap<CallableT>::copy,
        &SmallFunction<RetT(ArgTs...)>::Heap<CallableT>::destroy};

/// The object a container pointer (or a CNodePtr, which reaches the core)
/// points to, as the class the member function belongs to.
template <class ObjectT, class PtrT>
inline ObjectT *objectOf(const PtrT &ptr)
{
    return static_cast<ObjectT *>(ptr.getCPtr());
}

} // namespace FunctorDetail

// --- functor classes -------------------------------------------------------------

/// Functor without arguments.
template <class RetT>
class TypedFunctor0Base
{
  public:
    typedef RetT ResultType;

    TypedFunctor0Base(void) : _func() {}
    template <class CallableT>
    explicit TypedFunctor0Base(CallableT callable) : _func(std::move(callable)) {}

    RetT call(void) const { return _func(); }
    RetT operator()(void) const { return _func(); }
    bool isValid(void) const { return _func.isValid(); }

  protected:
    FunctorDetail::SmallFunction<RetT()> _func;
};

/// Functor with one call argument.
template <class RetT, class CallArgT>
class TypedFunctor1Base
{
  public:
    typedef RetT                        ResultType;
    typedef typename CallArgT::ArgType  CallArgType;

    TypedFunctor1Base(void) : _func() {}
    template <class CallableT>
    explicit TypedFunctor1Base(CallableT callable) : _func(std::move(callable)) {}

    RetT call(CallArgType arg) const { return _func(std::forward<CallArgType>(arg)); }
    RetT operator()(CallArgType arg) const { return _func(std::forward<CallArgType>(arg)); }
    bool isValid(void) const { return _func.isValid(); }

  protected:
    FunctorDetail::SmallFunction<RetT(CallArgType)> _func;
};

/// Functor with a call argument and one further argument.
template <class RetT, class CallArgT, class ArgsT>
class TypedFunctor2Base
{
  public:
    typedef RetT                        ResultType;
    typedef typename CallArgT::ArgType  CallArgType;
    typedef typename ArgsT::Arg1Type    Arg1Type;

    TypedFunctor2Base(void) : _func() {}
    template <class CallableT>
    explicit TypedFunctor2Base(CallableT callable) : _func(std::move(callable)) {}

    RetT call(CallArgType arg, Arg1Type arg1) const
    {
        return _func(std::forward<CallArgType>(arg), std::forward<Arg1Type>(arg1));
    }
    RetT operator()(CallArgType arg, Arg1Type arg1) const
    {
        return _func(std::forward<CallArgType>(arg), std::forward<Arg1Type>(arg1));
    }
    bool isValid(void) const { return _func.isValid(); }

  protected:
    FunctorDetail::SmallFunction<RetT(CallArgType, Arg1Type)> _func;
};

// The names of the concrete functor kinds; all of them are the base class
// with a particular target, so any of them converts to its base.
template <class RetT, class CallArgT>
using TypedFunctionFunctor1 = TypedFunctor1Base<RetT, CallArgT>;
template <class RetT, class CallArgT>
using TypedObjectFunctor1 = TypedFunctor1Base<RetT, CallArgT>;
template <class RetT, class CallArgT, class ArgsT>
using TypedFunctionFunctor2 = TypedFunctor2Base<RetT, CallArgT, ArgsT>;
template <class RetT, class CallArgT, class ArgsT>
using TypedObjectFunctor2 = TypedFunctor2Base<RetT, CallArgT, ArgsT>;

template <class CallArgT>
using TypedVoidFunctor1Base = TypedFunctor1Base<void, CallArgT>;
template <class CallArgT, class ArgsT>
using TypedVoidFunctor2Base = TypedFunctor2Base<void, CallArgT, ArgsT>;

// --- function functors ----------------------------------------------------------

template <class RetT>
inline TypedFunctor0Base<RetT> osgTypedFunctionFunctor0(RetT (*pFunc)(void))
{
    return TypedFunctor0Base<RetT>(pFunc);
}

template <class RetT, class CallArgT>
inline TypedFunctor1Base<RetT, PtrCallArg<CallArgT> >
osgTypedFunctionFunctor1Ptr(RetT (*pFunc)(CallArgT *))
{
    return TypedFunctor1Base<RetT, PtrCallArg<CallArgT> >(pFunc);
}

template <class RetT, class CallArgT>
inline TypedFunctor1Base<RetT, RefCallArg<CallArgT> >
osgTypedFunctionFunctor1Ref(RetT (*pFunc)(CallArgT &))
{
    return TypedFunctor1Base<RetT, RefCallArg<CallArgT> >(pFunc);
}

template <class RetT, class CallArgT>
inline TypedFunctor1Base<RetT, CPtrCallArg<CallArgT> >
osgTypedFunctionFunctor1CPtr(RetT (*pFunc)(CallArgT))
{
    return TypedFunctor1Base<RetT, CPtrCallArg<CallArgT> >(pFunc);
}

template <class RetT, class CallArgT>
inline TypedFunctor1Base<RetT, CPtrRefCallArg<CallArgT> >
osgTypedFunctionFunctor1CPtrRef(RetT (*pFunc)(CallArgT &))
{
    return TypedFunctor1Base<RetT, CPtrRefCallArg<CallArgT> >(pFunc);
}

template <class RetT, class CallArgT, class Arg1T>
inline TypedFunctor2Base<RetT, PtrCallArg<CallArgT>, ArgsCollector<Arg1T> >
osgTypedFunctionFunctor2Ptr(RetT (*pFunc)(CallArgT *, Arg1T))
{
    return TypedFunctor2Base<RetT, PtrCallArg<CallArgT>, ArgsCollector<Arg1T> >(pFunc);
}

template <class RetT, class CallArgT, class Arg1T>
inline TypedFunctor2Base<RetT, RefCallArg<CallArgT>, ArgsCollector<Arg1T> >
osgTypedFunctionFunctor2Ref(RetT (*pFunc)(CallArgT &, Arg1T))
{
    return TypedFunctor2Base<RetT, RefCallArg<CallArgT>, ArgsCollector<Arg1T> >(pFunc);
}

template <class RetT, class CallArgT, class Arg1T>
inline TypedFunctor2Base<RetT, CPtrCallArg<CallArgT>, ArgsCollector<Arg1T> >
osgTypedFunctionFunctor2CPtr(RetT (*pFunc)(CallArgT, Arg1T))
{
    return TypedFunctor2Base<RetT, CPtrCallArg<CallArgT>, ArgsCollector<Arg1T> >(pFunc);
}

template <class RetT, class CallArgT, class Arg1T>
inline TypedFunctor2Base<RetT, CPtrRefCallArg<CallArgT>, ArgsCollector<Arg1T> >
osgTypedFunctionFunctor2CPtrRef(RetT (*pFunc)(CallArgT &, Arg1T))
{
    return TypedFunctor2Base<RetT, CPtrRefCallArg<CallArgT>, ArgsCollector<Arg1T> >(pFunc);
}

// Functions without a result.
template <class CallArgT>
inline TypedFunctor1Base<void, PtrCallArg<CallArgT> >
osgTypedFunctionVoidFunctor1Ptr(void (*pFunc)(CallArgT *))
{
    return TypedFunctor1Base<void, PtrCallArg<CallArgT> >(pFunc);
}

template <class CallArgT>
inline TypedFunctor1Base<void, RefCallArg<CallArgT> >
osgTypedFunctionVoidFunctor1Ref(void (*pFunc)(CallArgT &))
{
    return TypedFunctor1Base<void, RefCallArg<CallArgT> >(pFunc);
}

template <class CallArgT>
inline TypedFunctor1Base<void, CPtrRefCallArg<CallArgT> >
osgTypedFunctionVoidFunctor1CPtrRef(void (*pFunc)(CallArgT &))
{
    return TypedFunctor1Base<void, CPtrRefCallArg<CallArgT> >(pFunc);
}

template <class CallArgT, class Arg1T>
inline TypedFunctor2Base<void, PtrCallArg<CallArgT>, ArgsCollector<Arg1T> >
osgTypedFunctionVoidFunctor2Ptr(void (*pFunc)(CallArgT *, Arg1T))
{
    return TypedFunctor2Base<void, PtrCallArg<CallArgT>, ArgsCollector<Arg1T> >(pFunc);
}

template <class CallArgT, class Arg1T>
inline TypedFunctor2Base<void, CPtrRefCallArg<CallArgT>, ArgsCollector<Arg1T> >
osgTypedFunctionVoidFunctor2CPtrRef(void (*pFunc)(CallArgT &, Arg1T))
{
    return TypedFunctor2Base<void, CPtrRefCallArg<CallArgT>, ArgsCollector<Arg1T> >(pFunc);
}

// --- method functors: the object is the first call argument ---------------------

template <class RetT, class CallArgT>
inline TypedFunctor1Base<RetT, PtrCallArg<CallArgT> >
osgTypedMethodFunctor1Ptr(RetT (CallArgT::*pFunc)(void))
{
    return TypedFunctor1Base<RetT, PtrCallArg<CallArgT> >(
        [pFunc](CallArgT *obj) -> RetT { return (obj->*pFunc)(); });
}

template <class RetT, class CallArgT>
inline TypedFunctor1Base<RetT, RefCallArg<CallArgT> >
osgTypedMethodFunctor1Ref(RetT (CallArgT::*pFunc)(void))
{
    return TypedFunctor1Base<RetT, RefCallArg<CallArgT> >(
        [pFunc](CallArgT &obj) -> RetT { return (obj.*pFunc)(); });
}

/// CallArgT is a container pointer type; the member belongs to its class or
/// one of its bases.
template <class RetT, class CallArgT>
inline TypedFunctor1Base<RetT, CPtrCallArg<CallArgT> >
osgTypedMethodFunctor1CPtr(RetT (CallArgT::StoredObjectType::*pFunc)(void))
{
    typedef typename CallArgT::StoredObjectType ObjectT;
    return TypedFunctor1Base<RetT, CPtrCallArg<CallArgT> >(
        [pFunc](CallArgT obj) -> RetT
        { return (FunctorDetail::objectOf<ObjectT>(obj)->*pFunc)(); });
}

template <class RetT, class CallArgT>
inline TypedFunctor1Base<RetT, CPtrRefCallArg<CallArgT> >
osgTypedMethodFunctor1CPtrRef(RetT (CallArgT::StoredObjectType::*pFunc)(void))
{
    typedef typename CallArgT::StoredObjectType ObjectT;
    return TypedFunctor1Base<RetT, CPtrRefCallArg<CallArgT> >(
        [pFunc](CallArgT &obj) -> RetT
        { return (FunctorDetail::objectOf<ObjectT>(obj)->*pFunc)(); });
}

/// The call argument is passed as CallArgT (e.g. NodeCorePtr) and viewed as
/// an ObjectPtrT's object.
template <class RetT, class ObjectPtrT, class CallArgT>
inline TypedFunctor1Base<RetT, CPtrCallArg<CallArgT> >
osgTypedMethodFunctor1BaseCPtr(RetT (ObjectPtrT::StoredObjectType::*pFunc)(void))
{
    typedef typename ObjectPtrT::StoredObjectType ObjectT;
    return TypedFunctor1Base<RetT, CPtrCallArg<CallArgT> >(
        [pFunc](CallArgT obj) -> RetT
        { return (FunctorDetail::objectOf<ObjectT>(obj)->*pFunc)(); });
}

template <class RetT, class ObjectPtrT, class CallArgT>
inline TypedFunctor1Base<RetT, CPtrRefCallArg<CallArgT> >
osgTypedMethodFunctor1BaseCPtrRef(RetT (ObjectPtrT::StoredObjectType::*pFunc)(void))
{
    typedef typename ObjectPtrT::StoredObjectType ObjectT;
    return TypedFunctor1Base<RetT, CPtrRefCallArg<CallArgT> >(
        [pFunc](CallArgT &obj) -> RetT
        { return (FunctorDetail::objectOf<ObjectT>(obj)->*pFunc)(); });
}

template <class RetT, class CallArgT, class Arg1T>
inline TypedFunctor2Base<RetT, PtrCallArg<CallArgT>, ArgsCollector<Arg1T> >
osgTypedMethodFunctor2Ptr(RetT (CallArgT::*pFunc)(Arg1T))
{
    return TypedFunctor2Base<RetT, PtrCallArg<CallArgT>, ArgsCollector<Arg1T> >(
        [pFunc](CallArgT *obj, Arg1T a1) -> RetT
        { return (obj->*pFunc)(std::forward<Arg1T>(a1)); });
}

template <class RetT, class CallArgT, class Arg1T>
inline TypedFunctor2Base<RetT, RefCallArg<CallArgT>, ArgsCollector<Arg1T> >
osgTypedMethodFunctor2Ref(RetT (CallArgT::*pFunc)(Arg1T))
{
    return TypedFunctor2Base<RetT, RefCallArg<CallArgT>, ArgsCollector<Arg1T> >(
        [pFunc](CallArgT &obj, Arg1T a1) -> RetT
        { return (obj.*pFunc)(std::forward<Arg1T>(a1)); });
}

template <class RetT, class CallArgT, class Arg1T>
inline TypedFunctor2Base<RetT, CPtrCallArg<CallArgT>, ArgsCollector<Arg1T> >
osgTypedMethodFunctor2CPtr(RetT (CallArgT::StoredObjectType::*pFunc)(Arg1T))
{
    typedef typename CallArgT::StoredObjectType ObjectT;
    return TypedFunctor2Base<RetT, CPtrCallArg<CallArgT>, ArgsCollector<Arg1T> >(
        [pFunc](CallArgT obj, Arg1T a1) -> RetT
        { return (FunctorDetail::objectOf<ObjectT>(obj)->*pFunc)(std::forward<Arg1T>(a1)); });
}

template <class RetT, class CallArgT, class Arg1T>
inline TypedFunctor2Base<RetT, CPtrRefCallArg<CallArgT>, ArgsCollector<Arg1T> >
osgTypedMethodFunctor2CPtrRef(RetT (CallArgT::StoredObjectType::*pFunc)(Arg1T))
{
    typedef typename CallArgT::StoredObjectType ObjectT;
    return TypedFunctor2Base<RetT, CPtrRefCallArg<CallArgT>, ArgsCollector<Arg1T> >(
        [pFunc](CallArgT &obj, Arg1T a1) -> RetT
        { return (FunctorDetail::objectOf<ObjectT>(obj)->*pFunc)(std::forward<Arg1T>(a1)); });
}

/// The actor form: called with (NodeCorePtr core, argument); the core is
/// taken as ObjectPtrT's object. No type check is made at call time: such a
/// functor is only ever called for the type it was registered for.
template <class RetT, class ObjectPtrT, class CallArgT, class Arg1T>
inline TypedFunctor2Base<RetT, CPtrCallArg<CallArgT>, ArgsCollector<Arg1T> >
osgTypedMethodFunctor2BaseCPtr(RetT (ObjectPtrT::StoredObjectType::*pFunc)(Arg1T))
{
    typedef typename ObjectPtrT::StoredObjectType ObjectT;
    return TypedFunctor2Base<RetT, CPtrCallArg<CallArgT>, ArgsCollector<Arg1T> >(
        [pFunc](CallArgT obj, Arg1T a1) -> RetT
        { return (FunctorDetail::objectOf<ObjectT>(obj)->*pFunc)(std::forward<Arg1T>(a1)); });
}

/// The action form: called with (CNodePtr &node, Action *action); the
/// node's core is taken as ObjectPtrT's object and the member (which may be
/// one of a base class) is called with the action.
template <class RetT, class ObjectPtrT, class CallArgT, class Arg1T>
inline TypedFunctor2Base<RetT, CPtrRefCallArg<CallArgT>, ArgsCollector<Arg1T> >
osgTypedMethodFunctor2BaseCPtrRef(RetT (ObjectPtrT::StoredObjectType::*pFunc)(Arg1T))
{
    typedef typename ObjectPtrT::StoredObjectType ObjectT;
    return TypedFunctor2Base<RetT, CPtrRefCallArg<CallArgT>, ArgsCollector<Arg1T> >(
        [pFunc](CallArgT &obj, Arg1T a1) -> RetT
        { return (FunctorDetail::objectOf<ObjectT>(obj)->*pFunc)(std::forward<Arg1T>(a1)); });
}

// --- method functors bound to one object -------------------------------------------

/// Binds pObj; the functor's argument goes to the member. The member may be
/// virtual (the call dispatches to the most derived override) and may belong
/// to a base class of the object's class.
template <class RetT, class ObjectT, class CallArgT, class ClassT>
inline TypedFunctor1Base<RetT, PtrCallArg<CallArgT> >
osgTypedMethodFunctor1ObjPtr(ObjectT *pObj, RetT (ClassT::*pFunc)(CallArgT *))
{
    ClassT *obj = pObj;
    return TypedFunctor1Base<RetT, PtrCallArg<CallArgT> >(
        [obj, pFunc](CallArgT *a) -> RetT { return (obj->*pFunc)(a); });
}

template <class RetT, class ObjectT, class CallArgT, class ClassT>
inline TypedFunctor1Base<RetT, RefCallArg<CallArgT> >
osgTypedMethodFunctor1ObjRef(ObjectT *pObj, RetT (ClassT::*pFunc)(CallArgT &))
{
    ClassT *obj = pObj;
    return TypedFunctor1Base<RetT, RefCallArg<CallArgT> >(
        [obj, pFunc](CallArgT &a) -> RetT { return (obj->*pFunc)(a); });
}

template <class RetT, class ObjectT, class CallArgT, class ClassT>
inline TypedFunctor1Base<RetT, CPtrRefCallArg<CallArgT> >
osgTypedMethodFunctor1ObjPtrCPtrRef(ObjectT *pObj, RetT (ClassT::*pFunc)(CallArgT &))
{
    ClassT *obj = pObj;
    return TypedFunctor1Base<RetT, CPtrRefCallArg<CallArgT> >(
        [obj, pFunc](CallArgT &a) -> RetT { return (obj->*pFunc)(a); });
}

template <class RetT, class ObjectT, class CallArgT, class Arg1T, class ClassT>
inline TypedFunctor2Base<RetT, PtrCallArg<CallArgT>, ArgsCollector<Arg1T> >
osgTypedMethodFunctor2ObjPtr(ObjectT *pObj, RetT (ClassT::*pFunc)(CallArgT *, Arg1T))
{
    ClassT *obj = pObj;
    return TypedFunctor2Base<RetT, PtrCallArg<CallArgT>, ArgsCollector<Arg1T> >(
        [obj, pFunc](CallArgT *a, Arg1T a1) -> RetT
        { return (obj->*pFunc)(a, std::forward<Arg1T>(a1)); });
}

template <class RetT, class ObjectT, class CallArgT, class Arg1T, class ClassT>
inline TypedFunctor2Base<RetT, CPtrRefCallArg<CallArgT>, ArgsCollector<Arg1T> >
osgTypedMethodFunctor2ObjPtrCPtrRef(ObjectT *pObj,
                                    RetT (ClassT::*pFunc)(CallArgT &, Arg1T))
{
    ClassT *obj = pObj;
    return TypedFunctor2Base<RetT, CPtrRefCallArg<CallArgT>, ArgsCollector<Arg1T> >(
        [obj, pFunc](CallArgT &a, Arg1T a1) -> RetT
        { return (obj->*pFunc)(a, std::forward<Arg1T>(a1)); });
}

template <class ObjectT, class CallArgT, class ClassT>
inline TypedFunctor1Base<void, PtrCallArg<CallArgT> >
osgTypedMethodVoidFunctor1ObjPtr(ObjectT *pObj, void (ClassT::*pFunc)(CallArgT *))
{
    return osgTypedMethodFunctor1ObjPtr<void, ObjectT, CallArgT, ClassT>(pObj, pFunc);
}

OSG_END_NAMESPACE

#endif
