// SPDX-License-Identifier: MIT
// A function as an argument. It refers to a plain function or to any object that can be called, such as a lambda with
// captures, and does not copy it. It is meant for parameters only: the function must outlive the call and must not be
// null.
#pragma once

#include <memory>
#include <type_traits>
#include <utility>

namespace algebra {

template <class Signature>
class function_ref;

template <class Result, class... Arguments>
class function_ref<Result(Arguments...)> {
    template <class Callable>
    static constexpr bool is_object = std::is_object_v<std::remove_reference_t<Callable>> &&
                                      !std::is_same_v<std::remove_cvref_t<Callable>, function_ref> &&
                                      std::is_invocable_r_v<Result, Callable &, Arguments...>;

public:
    /// This is not a template, so that it also chooses among overloaded functions.
    function_ref(Result (*function)(Arguments...))
        : call_([](target to, Arguments... arguments) -> Result {
              return to.function(std::forward<Arguments>(arguments)...);
          }) {
        to_.function = function;
    }
    template <class Callable, class = std::enable_if_t<is_object<Callable>>>
    function_ref(Callable &&callable)
        : call_([](target to, Arguments... arguments) -> Result {
              return (*static_cast<std::remove_reference_t<Callable> *>(to.object))(
                  std::forward<Arguments>(arguments)...);
          }) {
        to_.object = const_cast<void *>(static_cast<const volatile void *>(std::addressof(callable)));
    }

    Result operator()(Arguments... arguments) const { return call_(to_, std::forward<Arguments>(arguments)...); }

private:
    union target {
        void *object;
        Result (*function)(Arguments...);
    };
    target to_;
    Result (*call_)(target, Arguments...);
};

} // namespace algebra
