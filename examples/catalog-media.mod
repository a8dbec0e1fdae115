<!-- The pictures of articles. -->
<!ENTITY % media.content "(Picture+)">
<!ELEMENT Picture EMPTY>
<!ATTLIST Picture file CDATA #REQUIRED>
