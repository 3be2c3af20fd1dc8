// The places where a document can name something outside itself, and the names.
#pragma once

#include <cstdint>

// Where a document can name something. In the document, {N} is the name, and in the
// schema that goes with it, which the document reads where it validates.
struct CPlace {
  const char* pWhat;
  const char* pDocument;
  const char* pSchema;
  const char* pEnding;  // of the files
  int32_t scheme;
};

#define XSI "xmlns:i='http://www.w3.org/2001/XMLSchema-instance' "
#define XSD "<s:schema xmlns:s='http://www.w3.org/2001/XMLSchema' "
constexpr CPlace kPlaces[] = {
    {"general entity", "<!DOCTYPE t [<!ENTITY e SYSTEM '{N}'>]><t>&e;</t>", "", ".txt", 0},
    {"parameter entity", "<!DOCTYPE t [<!ENTITY % e SYSTEM '{N}'>%e;]><t/>", "", ".txt", 0},
    {"parameter entity of a document type", "<!DOCTYPE t SYSTEM 'main.xsd'><t/>",
     "<!ELEMENT t EMPTY><!ENTITY % e SYSTEM '{N}'>%e;", ".txt", 1},
    {"public entity", "<!DOCTYPE t [<!ENTITY e PUBLIC 'p' '{N}'>]><t>&e;</t>", "", ".txt", 0},
    {"document type", "<!DOCTYPE t SYSTEM '{N}' [<!ELEMENT t EMPTY>]><t/>", "", ".txt", 1},
    {"nested entity",
     "<!DOCTYPE t [<!ENTITY e SYSTEM '{N}'><!ENTITY f SYSTEM 'nested.txt'>]><t>&f;</t>", "", ".txt",
     0},
    {"under a base",
     "<!DOCTYPE t [<!ENTITY e SYSTEM '{N}'>]><t xml:base='http://{S}/'>"
     "<u xml:base='/etc/'>&e;</u></t>",
     "", ".txt", 0},
    {"schema", "<t " XSI "i:noNamespaceSchemaLocation='{N}'/>", "", ".xsd", 1},
    {"schema, auto", "<t " XSI "i:noNamespaceSchemaLocation='{N}'/>", "", ".xsd", 2},
    {"include", "<t " XSI "i:noNamespaceSchemaLocation='main.xsd'/>",
     XSD "><s:include schemaLocation='{N}'/></s:schema>", ".xsd", 1},
    {"redefine", "<t " XSI "i:noNamespaceSchemaLocation='main.xsd'/>",
     XSD "><s:redefine schemaLocation='{N}'/></s:schema>", ".xsd", 1},
    {"import", "<m:r xmlns:m='urn:m' " XSI "i:schemaLocation='urn:m main.xsd'/>",
     XSD "targetNamespace='urn:m'><s:import schemaLocation='{N}'/><s:element name='r'/></s:schema>",
     ".xsd", 1},
    {"entity of a schema", "<t " XSI "i:noNamespaceSchemaLocation='main.xsd'/>",
     "<!DOCTYPE s:schema [<!ENTITY e SYSTEM '{N}'>]>" XSD "><s:element name='t'/>&e;</s:schema>",
     ".txt", 1},
};

// {F} is the file, with the ending of the place, {D} and {O} are the paths of the two
// folders and {d} and {o} their names, {S} is the server. For each mode: read, read from the
// server (s), read and empty (e), refused (x), or missing (m).
struct CName {
  const char* pName;
  const char* pModes;
};
constexpr CName kNames[] = {
    {"{F}", "rrrx"},
    {"./{F}", "rrrx"},
    {"sub/{F}", "rrrx"},
    {"sub/../{F}", "rrrx"},
    {"../{d}/{F}", "rrrx"},
    {"{D}/{F}", "rrrx"},
    {"{D}//./{F}", "rrrx"},
    {"file:{D}/{F}", "rrrx"},
    {"file://{D}/{F}", "rrrx"},
    {"FILE://{D}/{F}", "rrrx"},
    {"file://LocalHost{D}/{F}", "rrrx"},
    {"file://{D}/sub/%2E%2e/{F}", "rrrx"},
    {"link-in", "rrrx"},
    {"missing", "mmmx"},
    {"%66.txt", "mmmx"},
    {"sub", "mmxx"},
    {"{O}/{F}", "rrxx"},
    {"file://{O}/{F}", "rrxx"},
    {"fIlE://localhost{O}/{F}", "rrxx"},
    {"file://{D}/%2e%2E/{o}/{F}", "rrxx"},
    {"../{o}/{F}", "rrxx"},
    {"sub/../../{o}/{F}", "rrxx"},
    {"link-out", "rrxx"},
    {"link-folder/{F}", "rrxx"},
    {"link-folder/../{F}", "rrrx"},
    {"file://{D}/link-folder/%2e%2e/{d}/{F}", "rrrx"},
    {"{O}/missing", "mmxx"},
    {"dangling", "mmxx"},
    {"pipe", "rrxx"},
    {"link-pipe", "rrxx"},
    {"/dev/null", "eexx"},
    {"http://{S}/{F}", "sxxx"},
    {"HtTp://{S}/{F}", "sxxx"},
    {"https://{S}/{F}", "mxxx"},
    {"ftp://{S}/{F}", "mxxx"},
    {"http://me:word@{S}/{F}", "sxxx"},
    {"file://{S}/{F}", "mxxx"},
    {"file://127.0.0.1{D}/{F}", "rxxx"},
    {"//{S}/{F}", "mmxx"},
    {"gopher://{S}/{F}", "mmmx"},
};
