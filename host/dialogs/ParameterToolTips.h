#pragma once

#include "host/commands/IParameterRepository.h"
#include "host/core/HostApi.h"

// The tool tip of a parameter: its label, and what it can be or is. Empty when the repository has
// no such parameter. The two numbers are the column at which long tips are wrapped and the most
// lines that they take.
class HOST_API CParameterToolTip {
  public:
    CString Text(int index) const;

  protected:
    CParameterToolTip(IParameterRepository* repository, int wrap_column, int lines,
                      EParameterType type);
    ~CParameterToolTip() = default;

  private:
    IParameterRepository* repository_;
    EParameterType type_;
};

class HOST_API CIntegerParameterToolTip : public CParameterToolTip {
  public:
    CIntegerParameterToolTip(IParameterRepository* repository, int wrap_column, int lines)
        : CParameterToolTip(repository, wrap_column, lines, EParameterType::Integer) {}
};
class HOST_API CBooleanParameterToolTip : public CParameterToolTip {
  public:
    CBooleanParameterToolTip(IParameterRepository* repository, int wrap_column, int lines)
        : CParameterToolTip(repository, wrap_column, lines, EParameterType::Boolean) {}
};
class HOST_API CColorParameterToolTip : public CParameterToolTip {
  public:
    CColorParameterToolTip(IParameterRepository* repository, int wrap_column, int lines)
        : CParameterToolTip(repository, wrap_column, lines, EParameterType::Colour) {}
};
// Of a parameter that stands for a share, in per cent; it is kept as an integer.
class HOST_API CRealParameterToolTip : public CParameterToolTip {
  public:
    CRealParameterToolTip(IParameterRepository* repository, int wrap_column, int lines)
        : CParameterToolTip(repository, wrap_column, lines, EParameterType::Integer) {}
};
