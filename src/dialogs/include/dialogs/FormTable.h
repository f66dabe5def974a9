#pragma once

#include "dialogs/FormModel.h"

#include <functional>
#include <map>
#include <typeindex>
#include <typeinfo>
#include <utility>

namespace qncomm {

/// What is done with a form, by the form's class: a face registers a row for each class that it
/// shows.
template <class Result>
class FormTable {
  public:
    /// What a row does. The form is that of the call.
    using Row = std::function<Result(FormModel&)>;

    /// Registers what is done with forms of that class, which derives from FormModel; replaces what
    /// was registered before.
    template <class Form>
    void Add(std::function<Result(Form&)> act) {
        mRows[typeid(Form)] = [act = std::move(act)](FormModel& form) {
            return act(static_cast<Form&>(form));
        };
    }

    /// What is done with this form; null when nothing is registered for its class. Valid until the
    /// class is registered anew.
    const Row* Find(const FormModel& form) const {
        const auto row = mRows.find(typeid(form));
        return row == mRows.end() ? nullptr : &row->second;
    }

  private:
    std::map<std::type_index, Row> mRows;
};

} // namespace qncomm
