# Prints one device of an instrument definition (.ins) file as the "Instrument" element of a
# saved state: its "Type", its controller names as "CC", and each bank's patch names, so that a
# rack carries the device inside the state and needs no file beside it.
#   awk -v device="Microsoft GS Wavetable Synth" -f scripts/ins-device.awk MSGS.ins
function escape(text) {
  gsub(/&/, "\\&amp;", text); gsub(/</, "\\&lt;", text); gsub(/>/, "\\&gt;", text)
  gsub(/"/, "\\&quot;", text)
  return text
}
{ sub(/\r$/, "") }
/^;/ || /^$/ { next }
/^\./ { section = $0; next }
/^\[.*\]$/ { table = substr($0, 2, length($0) - 2); next }
section == ".Patch Names" || section == ".Controller Names" {
  split($0, pair, "=")
  if (pair[1] ~ /^[0-9]+$/) {
    key = table SUBSEP pair[1]
    names[key] = substr($0, length(pair[1]) + 2)
    if (!(table in count)) count[table] = 0
    order[table, count[table]++] = pair[1]
  }
  next
}
section == ".Instrument Definitions" && table == device {
  if ($0 ~ /^Control=/) control = substr($0, 9)
  else if ($0 ~ /^Patch\[[0-9]+\]=/) {
    bank = $0; sub(/^Patch\[/, "", bank); sub(/\].*/, "", bank)
    banks[nbanks++] = bank; bankTable[bank] = substr($0, index($0, "=") + 1)
  }
}
function entries(tag, name,    i, n) {
  for (i = 0; i < count[name]; ++i) {
    n = order[name, i]
    printf "<%s Num=\"%s\">%s</%s>", tag, n, escape(names[name SUBSEP n]), tag
  }
}
END {
  printf "<Instrument><Type>%s</Type>", escape(device)
  entries("CC", control)
  for (b = 0; b < nbanks; ++b) {
    printf "<Bank Num=\"%s\" Name=\"%s\">", banks[b], escape(bankTable[banks[b]])
    entries("Patch", bankTable[banks[b]])
    printf "</Bank>"
  }
  printf "</Instrument>"
}
