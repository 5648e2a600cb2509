// SPDX-License-Identifier: GPL-3.0-or-later
// Operations by their names: a function is registered with one line, and how its arguments and its result are
// converted follows from its signature.
#pragma once

#include "cli/op/Values.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <tuple>
#include <type_traits>

namespace tomelet::cli {

/// What the first argument of an operation is.
enum class Receiver {
    None,  ///< it has none
    Path,  ///< an item in any of its forms; the function gets the full path
    Text,  ///< a text, taken as it stands
    Value, ///< a dictionary or list
};

struct Operation
{
    QString name;
    Receiver receiver;
    QStringList parameters; ///< names of the parameters, the receiver's first
    /// Arguments as values, the receiver first; gives the result, an invalid variant for nothing. An operation that
    /// works in place gives the changed receiver.
    std::function<QVariant(const QVariantList &)> call;
    bool hasResult = true;
    QList<bool> takesText; ///< for each parameter, whether the function takes a text
};

class Registry
{
public:
    template <typename F>
    void path(const char *name, const char *parameters, F function)
    {
        add(name, Receiver::Path, parameters, function);
    }
    template <typename F>
    void text(const char *name, const char *parameters, F function)
    {
        add(name, Receiver::Text, parameters, function);
    }
    template <typename F>
    void value(const char *name, const char *parameters, F function)
    {
        add(name, Receiver::Value, parameters, function);
    }
    template <typename F>
    void plain(const char *name, const char *parameters, F function)
    {
        add(name, Receiver::None, parameters, function);
    }

    [[nodiscard]] const QList<Operation> &all() const { return m_operations; }
    [[nodiscard]] bool contains(const QString &name) const;
    /// The operation of that name that takes so many arguments, the receiver counted; the one with the next larger
    /// number when none takes exactly these. Null when there is no such name.
    [[nodiscard]] const Operation *find(const QString &name, qsizetype arguments) const;
    /// Up to five names that are most like the one given.
    [[nodiscard]] QStringList nearest(const QString &name) const;

private:
    template <typename F>
    void add(const char *name, Receiver receiver, const char *parameters, F function)
    {
        const QString names = QString::fromLatin1(parameters);
        addOperation({QString::fromLatin1(name), receiver,
                      names.isEmpty() ? QStringList() : names.split(QStringLiteral(", ")),
                      adapted(std::function(function)), !returnsNothing(std::function(function)),
                      textParameters(std::function(function))});
    }

    template <typename R, typename... A>
    static QList<bool> textParameters(const std::function<R(A...)> &)
    {
        return {std::same_as<std::remove_cvref_t<A>, QString>...};
    }

    template <typename R, typename... A>
    static constexpr bool returnsNothing(const std::function<R(A...)> &)
    {
        return std::is_void_v<R> && !changesFirst<A...>();
    }

    template <typename R, typename... A>
    static std::function<QVariant(const QVariantList &)> adapted(std::function<R(A...)> function)
    {
        return [function](const QVariantList &arguments) {
            return callWith(function, arguments, std::index_sequence_for<A...>());
        };
    }

    template <typename R, typename... A, size_t... I>
    static QVariant callWith(const std::function<R(A...)> &function, const QVariantList &arguments,
                             std::index_sequence<I...>)
    {
        std::tuple<std::remove_cvref_t<A>...> values{fromVariant<std::remove_cvref_t<A>>(arguments.value(I))...};
        // A first parameter that can be changed is the receiver of an operation that works in place.
        constexpr bool inPlace = changesFirst<A...>();
        if constexpr (!std::is_void_v<R>) {
            return toVariant(function(std::get<I>(values)...));
        } else {
            function(std::get<I>(values)...);
            if constexpr (inPlace) return toVariant(std::get<0>(values));
            else return {};
        }
    }

    template <typename... A>
    static constexpr bool changesFirst()
    {
        if constexpr (sizeof...(A) == 0) {
            return false;
        } else {
            using First = std::tuple_element_t<0, std::tuple<A...>>;
            return std::is_lvalue_reference_v<First> && !std::is_const_v<std::remove_reference_t<First>>;
        }
    }

    void addOperation(Operation operation);

    QList<Operation> m_operations;
};

/// The registry with the operations of all subsystems.
[[nodiscard]] const Registry &registry();

// One function a subsystem adds its operations.
void addFoundationOperations(Registry &registry);
void addConversionOperations(Registry &registry);
void addLibraryOperations(Registry &registry);
void addPageOperations(Registry &registry);
void addOrganisingOperations(Registry &registry);
void addEditorOperations(Registry &registry);
void addScreenplayOperations(Registry &registry);
void addTaskOperations(Registry &registry);

} // namespace tomelet::cli
