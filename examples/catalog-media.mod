<!-- Pictures of what a catalogue offers. -->
<!ENTITY % media.content "(Picture+)">
<!ELEMENT Picture EMPTY>
<!ATTLIST Picture file CDATA #REQUIRED>
