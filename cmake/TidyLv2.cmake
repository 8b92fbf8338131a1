# Takes out of a written LV2 bundle what the framework states without having anything to say: the plug-in's one program, which
# has no name and would stand as an empty line in hosts' preset lists, and an empty mail address.
#   cmake -D BUNDLE=Tarvelline.lv2 -P TidyLv2.cmake
file(READ "${BUNDLE}/manifest.ttl" manifest)
string(REGEX REPLACE "\n<[^>\n]*:preset1>\n.*\"0\"\\^\\^xsd:int ; ] \\.\n" "" manifest "${manifest}")
file(WRITE "${BUNDLE}/manifest.ttl" "${manifest}")

file(READ "${BUNDLE}/dsp.ttl" description)
string(REPLACE "\t\tfoaf:mbox <> ;\n" "" description "${description}")
file(WRITE "${BUNDLE}/dsp.ttl" "${description}")
