SET NAMES utf8;
DROP TABLE IF EXISTS `city`;
CREATE TABLE `city` (`id` int NOT NULL, `name` varchar(40), `lat` double, PRIMARY KEY (`id`));
LOCK TABLES `city` WRITE;
INSERT INTO `city` VALUES (1,'Kabul',34.5),(2,'Qandahar',31.6),(3,'Herat',34.3),(4,'Mazar',36.7);
INSERT INTO `city` VALUES (5,'Amsterdam',52.4),(6,'Rotterdam',51.9);
UNLOCK TABLES;
