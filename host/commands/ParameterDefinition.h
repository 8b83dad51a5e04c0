#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "host/commands/IParameterRepository.h"
#include "host/core/HostApi.h"
#include "host/core/TRef.h"

// Each makes a new parameter value object, with one reference for the caller, whose value is its
// default. The two trailing arguments are false in every definition.
HOST_API CErrorAutoThrow DefIntParam(IParameter** out, int index, const CString& name,
                                     const CString& label, const CString& description,
                                     std::int32_t minimum, std::int32_t maximum,
                                     std::int32_t default_value, std::uint32_t flags, bool, bool);
HOST_API CErrorAutoThrow DefColorParam(IParameter** out, int index, const CString& name,
                                       const CString& label, const CString& description,
                                       COLORREF default_value, std::uint32_t flags, bool, bool);
// `type_name` selects one of the host's enumerations; error 101 for an unknown one.
HOST_API CErrorAutoThrow DefEnumParam(IParameter** out, int index, const CString& type_name,
                                      const CString& name, const CString& label,
                                      const CString& description, std::int32_t default_member,
                                      std::uint32_t flags, bool, bool);
HOST_API CErrorAutoThrow DefStringParam(IParameter** out, int index, const CString& name,
                                        const CString& label, const CString& description,
                                        const CString& default_value, std::uint32_t flags, bool,
                                        bool);

// The member names of a host enumeration, member 0 first; empty for an unknown one.
HOST_API const std::vector<std::string_view>& EnumMembers(const CString& type_name);
