<?xml-stylesheet type="text/xsl" href="#screenplay"?>
<!DOCTYPE DOC [<!ATTLIST xsl:stylesheet id ID #REQUIRED>]>
<DOC>
<xsl:stylesheet id="screenplay" version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:output method="html"/>
<xsl:template match="/">
<html>
<head>
<style>
body { max-width: 38em; margin: 2em auto; padding: 0 1em; font: 12pt/1.15 "Courier Prime", "Liberation Mono", "Courier New", monospace; }
p { margin: 0 0 1em; white-space: pre-wrap; }
.scene { font-weight: bold; text-transform: uppercase; margin-top: 2em; }
.character { margin: 0 0 0 33%; text-transform: uppercase; }
.dialogue { margin: 0 25% 1em 17%; }
.parenthetical { margin: 0 30% 0 25%; }
.transition { text-align: right; text-transform: uppercase; }
.title { text-align: center; }
.dual { display: grid; grid-template-columns: 1fr 1fr; column-gap: 2em; }
</style>
</head>
<body>
<xsl:for-each select="//TitlePage/Content/Paragraph"><p class="title"><xsl:apply-templates select="Text"/></p></xsl:for-each>
<xsl:apply-templates select="//FinalDraft/Content/Paragraph"/>
</body>
</html>
</xsl:template>
<xsl:template match="Paragraph">
<xsl:choose>
<xsl:when test="DualDialogue"><div class="dual"><xsl:apply-templates select="DualDialogue/Paragraph"/></div></xsl:when>
<xsl:when test="@Type='Scene Heading'"><p class="scene"><xsl:apply-templates select="Text"/></p></xsl:when>
<xsl:when test="@Type='Character'"><p class="character"><xsl:apply-templates select="Text"/></p></xsl:when>
<xsl:when test="@Type='Dialogue' or @Type='Lyrics'"><p class="dialogue"><xsl:apply-templates select="Text"/></p></xsl:when>
<xsl:when test="@Type='Parenthetical'"><p class="parenthetical"><xsl:apply-templates select="Text"/></p></xsl:when>
<xsl:when test="@Type='Transition'"><p class="transition"><xsl:apply-templates select="Text"/></p></xsl:when>
<xsl:otherwise><p><xsl:apply-templates select="Text"/></p></xsl:otherwise>
</xsl:choose>
</xsl:template>
<xsl:template match="Text">
<xsl:choose>
<xsl:when test="contains(@Style, 'Bold')"><b><xsl:value-of select="."/></b></xsl:when>
<xsl:when test="contains(@Style, 'Italic')"><i><xsl:value-of select="."/></i></xsl:when>
<xsl:when test="contains(@Style, 'Underline')"><u><xsl:value-of select="."/></u></xsl:when>
<xsl:otherwise><xsl:value-of select="."/></xsl:otherwise>
</xsl:choose>
</xsl:template>
</xsl:stylesheet>
