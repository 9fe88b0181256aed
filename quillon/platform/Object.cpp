#include <quillon/platform/Object.h>

namespace quillon {

const CRuntimeClass CObject::classCObject = {"CObject", nullptr, nullptr};

bool CRuntimeClass::IsDerivedFrom(const CRuntimeClass* baseClass) const {
    for (const CRuntimeClass* current = this; current != nullptr; current = current->m_pBaseClass) {
        if (current == baseClass)
            return true;
    }
    return false;
}

const CRuntimeClass* CObject::GetRuntimeClass() const {
    return &classCObject;
}

bool CObject::IsKindOf(const CRuntimeClass* runtimeClass) const {
    return GetRuntimeClass()->IsDerivedFrom(runtimeClass);
}

} // namespace quillon
