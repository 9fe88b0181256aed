#pragma once

namespace quillon {

class CObject;

// Run-time class information: the class name, the base class and, for dynamically creatable
// classes, a factory that makes a default object.
struct CRuntimeClass {
    const char* m_lpszClassName;
    const CRuntimeClass* m_pBaseClass;
    CObject* (*m_pfnCreateObject)();

    // A new default object of the class, or null when the class is not dynamically creatable.
    CObject* CreateObject() const { return m_pfnCreateObject ? m_pfnCreateObject() : nullptr; }
    // True when this class is baseClass or derives from it.
    bool IsDerivedFrom(const CRuntimeClass* baseClass) const;
};

// The root of the data classes: a polymorphic base that reports its run-time class.
class CObject {
public:
    virtual ~CObject() = default;

    virtual const CRuntimeClass* GetRuntimeClass() const;
    bool IsKindOf(const CRuntimeClass* runtimeClass) const;

    static const CRuntimeClass classCObject;

protected:
    CObject() = default;
    CObject(const CObject&) = default;
    CObject(CObject&&) = default;
    CObject& operator=(const CObject&) = default;
    CObject& operator=(CObject&&) = default;
};

} // namespace quillon

// The run-time class record of a class.
#define QUILLON_RUNTIME_CLASS(className) (&className::class##className)

// In the class body: declares the class's run-time class record and its accessor.
#define QUILLON_DECLARE_DYNAMIC(className)                                                         \
public:                                                                                            \
    static const ::quillon::CRuntimeClass class##className;                                        \
    const ::quillon::CRuntimeClass* GetRuntimeClass() const override;

// In the class body: as QUILLON_DECLARE_DYNAMIC, plus a factory for default objects.
#define QUILLON_DECLARE_DYNCREATE(className)                                                       \
    QUILLON_DECLARE_DYNAMIC(className)                                                             \
    static ::quillon::CObject* CreateObject();

// In one source file, inside the class's namespace: defines the run-time class record.
#define QUILLON_IMPLEMENT_RUNTIMECLASS(className, baseClassName, factory)                          \
    const ::quillon::CRuntimeClass className::class##className = {                                 \
        #className, QUILLON_RUNTIME_CLASS(baseClassName), factory};                                \
    const ::quillon::CRuntimeClass* className::GetRuntimeClass() const {                           \
        return QUILLON_RUNTIME_CLASS(className);                                                   \
    }

#define QUILLON_IMPLEMENT_DYNAMIC(className, baseClassName)                                        \
    QUILLON_IMPLEMENT_RUNTIMECLASS(className, baseClassName, nullptr)

#define QUILLON_IMPLEMENT_DYNCREATE(className, baseClassName)                                      \
    ::quillon::CObject* className::CreateObject() {                                                \
        return new className;                                                                      \
    }                                                                                              \
    QUILLON_IMPLEMENT_RUNTIMECLASS(className, baseClassName, &className::CreateObject)
