// Exceptions of the object model; only a handle cast to an unrelated class throws.
#pragma once

#include "KARPlatformExport.h"

#include <exception>
#include <string>

/// Root of the object model's exceptions.
class KAR_API QOBException : public std::exception
{
public:
    /// Takes a wide message, the source path and the line of the throw.
    QOBException(const wchar_t* message, const char* path, int line);
    QOBException(const QOBException&);
    QOBException(QOBException&&) noexcept;
    ~QOBException() override;

    QOBException& operator=(const QOBException&) = delete;

    /// The message as narrow text.
    const char* what() const noexcept override { return m_text.c_str(); }
    /// The message as given.
    const std::wstring& getMessage() const noexcept { return m_message; }
    /// Source path of the throw.
    const std::string& getPath() const noexcept { return m_path; }
    /// Line of the throw.
    int getLine() const noexcept { return m_line; }

private:
    std::wstring m_message;
    std::string m_text;
    std::string m_path;
    int m_line;
};

/// An exception whose cause shows at run time only.
class KAR_API QOBERuntimeError : public QOBException
{
public:
    using QOBException::QOBException;
    QOBERuntimeError(const QOBERuntimeError&);
    QOBERuntimeError(QOBERuntimeError&&) noexcept;
    ~QOBERuntimeError() override;
};

/// Thrown when a handle is converted to a referent type that its referent does not have.
class KAR_API QOBEInvalidCast : public QOBERuntimeError
{
public:
    using QOBERuntimeError::QOBERuntimeError;
    QOBEInvalidCast(const QOBEInvalidCast&);
    QOBEInvalidCast(QOBEInvalidCast&&) noexcept;
    ~QOBEInvalidCast() override;
};
