/** Counts the holders of an object that the system asks through interfaces. */
#pragma once

#include <unknwn.h>

#include <atomic>

namespace workbench {

/** Begins with one holder, its maker; the last that gives it back ends it. What derives from it answers QueryInterface.
 */
template <class... Interfaces>
class Com_Object : public Interfaces... {
  public:
    Com_Object(const Com_Object&) = delete;
    Com_Object& operator=(const Com_Object&) = delete;

    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references;
        if (left == 0) {
            delete this;
        }
        return left;
    }

  protected:
    Com_Object() = default;
    virtual ~Com_Object() = default;

  private:
    std::atomic<ULONG> references = 1;
};

}  // namespace workbench
